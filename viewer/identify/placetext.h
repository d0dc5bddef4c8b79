#pragma once

#include <QPointF>
#include <QString>

#include <optional>

namespace Viewer::PlaceText {

/// The place that a person wrote. Two numbers are world coordinates, x first: "299940.5, 4100000", "299940,5 4100000",
/// "299940.5;4100000". Numbers with a side are latitude and longitude on WGS 84, in either order, with degrees alone or
/// minutes and seconds after them: "46.72 N 9.92 E", "9° 55' 25.1\" E, 46° 43' 25\" N"; they need the EPSG \a code of
/// the world coordinates. Nothing for any other text, and for places that the system does not reach.
std::optional<QPointF> parse(const QString &text, int code);

} // namespace Viewer::PlaceText
