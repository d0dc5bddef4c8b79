#include "mapgeometry.h"

#include <algorithm>
#include <cmath>

namespace Korvane::Map {

namespace {

bool isFinite(const QRectF &rect)
{
    return std::isfinite(rect.x()) && std::isfinite(rect.y()) && std::isfinite(rect.width()) &&
           std::isfinite(rect.height());
}

} // namespace

bool MapGeometry::operator==(const MapGeometry &other) const
{
    // QPointF's own comparison is a fuzzy one, which near the origin takes small pans for none.
    return deviceSize == other.deviceSize && center.x() == other.center.x() && center.y() == other.center.y() &&
           unitsPerPixel == other.unitsPerPixel;
}

QRectF MapGeometry::worldRect() const
{
    const double width = deviceSize.width() * unitsPerPixel;
    const double height = deviceSize.height() * unitsPerPixel;
    return QRectF(center.x() - width / 2.0, center.y() + height / 2.0, width, -height);
}

QPointF MapGeometry::toWorld(const QPointF &devicePoint) const
{
    return QPointF(center.x() + (devicePoint.x() - deviceSize.width() / 2.0) * unitsPerPixel,
                   center.y() - (devicePoint.y() - deviceSize.height() / 2.0) * unitsPerPixel);
}

QPointF MapGeometry::toDevice(const QPointF &worldPoint) const
{
    return QPointF((worldPoint.x() - center.x()) / unitsPerPixel + deviceSize.width() / 2.0,
                   (center.y() - worldPoint.y()) / unitsPerPixel + deviceSize.height() / 2.0);
}

QRect MapGeometry::toDevice(const QRectF &world) const
{
    const QPointF corner1 = toDevice(world.topLeft());
    const QPointF corner2 = toDevice(world.bottomRight());
    // A pixel more on each side: an edge between two pixels touches both, and smoothing reaches beyond.
    const auto pixel = [](double value, int size) { return static_cast<int>(std::clamp(value, 0.0, size * 1.0)); };
    const int left = pixel(std::floor(std::min(corner1.x(), corner2.x())) - 1, deviceSize.width());
    const int right = pixel(std::ceil(std::max(corner1.x(), corner2.x())) + 1, deviceSize.width());
    const int top = pixel(std::floor(std::min(corner1.y(), corner2.y())) - 1, deviceSize.height());
    const int bottom = pixel(std::ceil(std::max(corner1.y(), corner2.y())) + 1, deviceSize.height());
    return QRect(left, top, right - left, bottom - top);
}

void MapGeometry::fit(const QRectF &world)
{
    if (!isFinite(world))
        return;
    center = world.center();
    const double needed =
        std::max(std::abs(world.width()) / deviceSize.width(), std::abs(world.height()) / deviceSize.height());
    if (needed > 0.0)
        unitsPerPixel = needed;
}

void MapGeometry::zoomAt(double factor, const QPointF &devicePoint)
{
    if (!std::isfinite(factor) || factor <= 0.0)
        return;
    const QPointF anchor = toWorld(devicePoint);
    unitsPerPixel /= factor;
    center += anchor - toWorld(devicePoint);
}

void MapGeometry::panBy(const QPointF &devicePixels)
{
    center += QPointF(-devicePixels.x() * unitsPerPixel, devicePixels.y() * unitsPerPixel);
}

void MapGeometry::alignTo(const QPointF &world)
{
    const QPointF place = toDevice(world);
    panBy(QPointF(std::round(place.x()) - place.x(), std::round(place.y()) - place.y()));
}

} // namespace Korvane::Map
