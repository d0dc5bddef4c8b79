#pragma once

#include <QPointF>

#include <optional>

namespace Viewer::Geographic {

/// Longitude and latitude on WGS 84, in degrees, of \a world in the coordinate reference system of the EPSG \a code.
/// Nothing for codes that are not known and places that the system does not reach.
std::optional<QPointF> fromWorld(const QPointF &world, int code);

/// The other way round.
std::optional<QPointF> toWorld(const QPointF &longitudeLatitude, int code);

/// "12.345678° E"
QString longitudeText(double degrees);
/// "47.654321° N"
QString latitudeText(double degrees);

} // namespace Viewer::Geographic
