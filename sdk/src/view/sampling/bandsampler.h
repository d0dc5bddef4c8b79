#pragma once

#include "base/plane.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Planes of the components that a view needs, one each, none of them empty.
using PlaneList = std::vector<const Plane *>;

/// Makes the lines of a view in the bands' own depth.
class BandSampler
{
public:
    virtual ~BandSampler() = default;
    /// The planes that the next lines are made from. They are not copied and must cover these lines.
    virtual void bind(const PlaneList &planes) = 0;
    /// Makes one row per band for view line \a y: the cells of the pixels that lie inside the image.
    virtual void sample(int y, std::int32_t *const *bandRows) = 0;
};

} // namespace xrv
