#pragma once

#include <QDGui/rasterlayer.h>

#include <QColor>

/// A raster layer without a decoder: shows the files that QuadFile describes as four squares of one colour each.
///
/// The file is one line of text: "QUAD <width> <height> <x> <y> <cell size> [mode]" with the north-west corner (x, y).
/// Mode "slow" completes its picture after a while, "never" does not complete at all.
class QuadLayer : public Korvane::Map::RasterLayer
{
    Q_OBJECT
    Q_PROPERTY(double Contrast MEMBER contrast)
    Q_PROPERTY(QColor Tint MEMBER tint)
    Q_PROPERTY(QVector<int> BandList READ getBandList WRITE setBandList)
    Q_PROPERTY(QString SizeText READ sizeText)

public:
    QuadLayer();

    QString getDataSource() const override { return source; }
    bool setDataSource(QString newSource) override;
    QString getFormat() const override { return QStringLiteral("Quad"); }
    QString getCoordSysName() const override { return QStringLiteral("epsg:32633"); }
    QString getProtocol() const override { return QStringLiteral("Local file"); }
    QRectF getBounds() const override;
    bool isValid() const override { return valid; }
    QString getLastError() const override { return lastError; }
    signed char getPercentComplete() const override { return percent; }
    void setView(int width, int height, double x1, double y1, double x2, double y2) override;
    void paint(Korvane::GeoPainter &painter, const QRectF *world, const QRect *device) override;

    double getCellSizeX() const override { return cellSize; }
    double getCellSizeY() const override { return -cellSize; }
    double getTransparency() const override { return 1.0; }
    void setTransparency(double) override {}
    int getNumberOfBands() const override { return 3; }
    QVector<int> getBandList() const override { return bands; }
    void setBandList(QVector<int> newBands) override { bands = newBands; }
    QSize getSize() const override { return cells; }
    QString getCellType() const override { return QStringLiteral("UInt8"); }
    bool hasOpacity() const override { return false; }
    int getOpacityBandNumber() const override { return -1; }
    double getRotation() const override { return 0.0; }
    ColorSpace getColorSpace() const override { return RGB; }

private:
    QString sizeText() const { return QStringLiteral("%1x%2").arg(cells.width()).arg(cells.height()); }
    void complete();

    QString source;
    QString lastError;
    QString mode;
    QSize cells;
    double x = 0.0;
    double y = 0.0;
    double cellSize = 1.0;
    double contrast = 1.0;
    QColor tint = Qt::white;
    QVector<int> bands{0, 1, 2};
    bool valid = false;
    signed char percent = 0;
};
