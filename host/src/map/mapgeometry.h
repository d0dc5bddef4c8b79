#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

namespace Korvane::Map {

/// Which part of the world a map of some device pixels shows. World rectangles have a negative height.
struct MapGeometry
{
    QSize deviceSize{1, 1};
    QPointF center;
    double unitsPerPixel = 1.0;

    bool operator==(const MapGeometry &other) const;

    QRectF worldRect() const;
    QPointF toWorld(const QPointF &devicePoint) const;
    QPointF toDevice(const QPointF &worldPoint) const;
    /// Device pixels that \a world touches, with one more all around; inside the device.
    QRect toDevice(const QRectF &world) const;

    /// Shows all of \a world, centred. A world rectangle that is a point or not finite changes nothing but the centre.
    void fit(const QRectF &world);
    /// Makes everything \a factor times larger; \a devicePoint stays in place.
    void zoomAt(double factor, const QPointF &devicePoint);
    void panBy(const QPointF &devicePixels);
    /// Moves by less than a pixel, so that \a world lies on a border between pixels.
    void alignTo(const QPointF &world);
};

} // namespace Korvane::Map
