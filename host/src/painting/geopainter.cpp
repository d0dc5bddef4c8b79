#include <QDGui/geopainter.h>

#include "deviceaxis.h"

#include <algorithm>

namespace Korvane {

GeoPainter::GeoPainter(QPaintDevice *device, const QRectF &world, const QRectF &deviceRect)
    : QPainter(device)
    , world(world)
    , deviceRect(deviceRect)
{
}

QPointF GeoPainter::worldToDevice(const QPointF &worldPoint) const
{
    const DeviceAxis horizontal{deviceRect.left(), deviceRect.right(), world.left(), world.right()};
    const DeviceAxis vertical{deviceRect.top(), deviceRect.bottom(), world.top(), world.bottom()};
    return QPointF(horizontal.toDevice(worldPoint.x()), vertical.toDevice(worldPoint.y()));
}

QPointF GeoPainter::deviceToWorld(const QPointF &devicePoint) const
{
    const DeviceAxis horizontal{deviceRect.left(), deviceRect.right(), world.left(), world.right()};
    const DeviceAxis vertical{deviceRect.top(), deviceRect.bottom(), world.top(), world.bottom()};
    return QPointF(horizontal.toWorld(devicePoint.x()), vertical.toWorld(devicePoint.y()));
}

void GeoPainter::drawWorldRect(double x1, double y1, double x2, double y2)
{
    const QPointF corner1 = worldToDevice(QPointF(x1, y1));
    const QPointF corner2 = worldToDevice(QPointF(x2, y2));
    // Zoomed in far, the corners lie beyond what the paint engine can count; lines out of sight may as well end there.
    const double margin = 64.0 + pen().widthF();
    const QRectF reach = deviceRect.normalized().adjusted(-margin, -margin, margin, margin);
    const double left = roundedEdge(std::max(reach.left(), std::min(corner1.x(), corner2.x())));
    const double right = roundedEdge(std::min(reach.right(), std::max(corner1.x(), corner2.x())));
    const double top = roundedEdge(std::max(reach.top(), std::min(corner1.y(), corner2.y())));
    const double bottom = roundedEdge(std::min(reach.bottom(), std::max(corner1.y(), corner2.y())));
    if (!(left <= right) || !(top <= bottom))
        return;
    save();
    setBrush(Qt::NoBrush);
    // A one-pixel outline of QRect(l, t, w, h) covers the columns l and l + w.
    drawRect(QRect(static_cast<int>(left), static_cast<int>(top), std::max(0, static_cast<int>(right - left) - 1),
                   std::max(0, static_cast<int>(bottom - top) - 1)));
    restore();
}

void GeoPainter::drawWorldRect(const QRectF &worldRect)
{
    drawWorldRect(worldRect.left(), worldRect.top(), worldRect.left() + worldRect.width(),
                  worldRect.top() + worldRect.height());
}

} // namespace Korvane
