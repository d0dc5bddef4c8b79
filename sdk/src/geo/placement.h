#pragma once

#include "crsnames.h"

#include <array>
#include <optional>

namespace xrv {

/// See GeoReference::transform.
using Transform = std::array<double, 6>;

/// What one source of geo-referencing tells; each part may be missing.
struct Placement
{
    std::optional<Transform> transform; ///< of cell corners
    std::optional<CrsDescription> crs;
};

/// A transform of cell centres made one of cell corners.
Transform fromCentres(Transform centres);
/// All numbers finite and the cells have an area.
bool isUsable(const Transform &transform);

} // namespace xrv
