#pragma once

#include <QDGui/qdguiglobal.h>

#include <QPainter>
#include <QRectF>

namespace Korvane {

/// A painter that knows which part of the world its device rectangle shows. Not a transform of the painter: what is
/// drawn through QPainter's own functions stays in device coordinates.
class QDGUI_EXPORT GeoPainter : public QPainter
{
public:
    /// Begins on \a device. \a world is the rectangle from its top-left to its bottom-right corner (negative height on
    /// a north-up map) that \a deviceRect, in the painter's logical coordinates, shows.
    GeoPainter(QPaintDevice *device, const QRectF &world, const QRectF &deviceRect);

    QRectF getWorldRect() const { return world; }
    QRectF getDeviceRect() const { return deviceRect; }

    QPointF worldToDevice(const QPointF &worldPoint) const;
    QPointF deviceToWorld(const QPointF &devicePoint) const;

    /// Draws the outline of the world rectangle with two opposite corners (x1, y1) and (x2, y2), with the current pen,
    /// on the outermost pixels that a GeoImage of the same extent covers. The interior stays as it is.
    void drawWorldRect(double x1, double y1, double x2, double y2);
    void drawWorldRect(const QRectF &worldRect);

private:
    QRectF world;
    QRectF deviceRect;
};

} // namespace Korvane
