#pragma once

#include <QDGui/geoimage.h>
#include <QDGui/geopainter.h>
#include <QDGui/layer.h>

#include <QRegion>
#include <QStringList>
#include <QVector>

#include <atomic>

/// A layer that writes down what the map view asks of it, and draws the colour of each of its four quarters.
class FakeLayer : public Korvane::Map::Layer
{
public:
    struct View
    {
        QSize size;
        double x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    };

    /// \a bounds as getBounds() gives them; quarters are coloured from the first row and column on.
    explicit FakeLayer(const QRectF &bounds, const QVector<QRgb> &quarters = {qRgb(255, 0, 0), qRgb(0, 255, 0),
                                                                              qRgb(0, 0, 255), qRgb(255, 255, 0)})
        : bounds(bounds)
        , image(2, 2, bounds.left(), bounds.top(), bounds.left() + bounds.width(), bounds.top() + bounds.height(),
                QImage::Format_ARGB32, nullptr)
    {
        for (int i = 0; i < 4; ++i)
            image.setPixel(i % 2, i / 2, quarters[i]);
    }

    QString getDataSource() const override { return QString(); }
    bool setDataSource(QString) override { return true; }
    void setView(int width, int height, double x1, double y1, double x2, double y2) override
    {
        view = {QSize(width, height), x1, y1, x2, y2};
        ++viewCount;
        calls.append(QStringLiteral("setView"));
    }
    void beginUpdate(bool zooming) override { calls.append(zooming ? QStringLiteral("zoom") : QStringLiteral("roam")); }
    void endUpdate() override { calls.append(QStringLiteral("end")); }
    QRectF getBounds() const override { return bounds; }
    bool isValid() const override { return valid; }
    signed char getPercentComplete() const override
    {
        ++askedCount;
        return static_cast<signed char>(percent.load());
    }
    void paint(Korvane::GeoPainter &painter, const QRectF *world, const QRect *device) override
    {
        ++paintCount;
        paintedRegion = painter.clipRegion();
        image.paint(painter, device->x(), device->y(), device->x() + device->width(), device->y() + device->height(),
                    world->left(), world->top(), world->right(), world->bottom());
    }

    QRectF bounds;
    Korvane::GeoImage image;
    bool valid = true;
    std::atomic<int> percent{100};
    mutable std::atomic<int> askedCount{0}; ///< times that the percentage was asked for

    View view;
    int viewCount = 0;
    int paintCount = 0;
    QRegion paintedRegion;
    QStringList calls;
};
