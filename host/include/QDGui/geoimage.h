#pragma once

#include <QDGui/qdguiglobal.h>

#include <QImage>
#include <QRectF>

class QColor;
class QPainter;

namespace Korvane {

/// An image that knows its world extent. Row 0 lies at y1, column 0 at x1; with y2 < y1 it is a north-up image, with
/// y2 > y1 a south-up one.
class QDGUI_EXPORT GeoImage : public QImage
{
public:
    /// \a width by \a height pixels that cover the world from corner (x1, y1) to corner (x2, y2). Filled with \a fill;
    /// without a fill the pixels are undefined. isNull() when the memory is not to be had or the size is not positive.
    GeoImage(int width, int height, double x1, double y1, double x2, double y2, QImage::Format format,
             const QColor *fill);
    GeoImage(const QImage &image, double x1, double y1, double x2, double y2);

    double getX1() const { return x1; }
    double getY1() const { return y1; }
    double getX2() const { return x2; }
    double getY2() const { return y2; }
    /// From (x1, y1); negative height for a north-up image.
    QRectF getWorldRect() const { return QRectF(x1, y1, x2 - x1, y2 - y1); }

    /// Draws the image where it belongs in the device rectangle from (deviceX1, deviceY1) to (deviceX2, deviceY2),
    /// which shows the world rectangle from (worldX1, worldY1) to (worldX2, worldY2); nothing is drawn outside it. The
    /// image is turned over where its rows or columns run against the device's. Its edges are rounded to whole pixels,
    /// so images that meet in the world meet on the device, and an image that has as many pixels as it then covers is
    /// copied, not resampled. Otherwise pixels are taken at their exact place: the nearest, or interpolated with the
    /// painter's SmoothPixmapTransform hint.
    void paint(QPainter &painter, double deviceX1, double deviceY1, double deviceX2, double deviceY2, double worldX1,
               double worldY1, double worldX2, double worldY2) const;

private:
    double x1;
    double y1;
    double x2;
    double y2;
};

} // namespace Korvane
