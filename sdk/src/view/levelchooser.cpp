#include "levelchooser.h"

#include <algorithm>
#include <cmath>

namespace xrv {

namespace {

constexpr double kMaxCell = 1.2;        ///< pixels
constexpr double kMaxCoarserCell = 1.4; ///< pixels
constexpr int kSqueezedLevels = 3;

/// Coarsest level whose cells are at most \a largestCell pixels, for \a pitch dataset cells per pixel.
int levelFor(double pitch, double largestCell)
{
    const double cells = pitch * largestCell * (1.0 + 1e-9);
    return cells < 2.0 ? 0 : std::min(62, std::ilogb(cells));
}

} // namespace

bool isLevelUsable(const RasterInfo &raster, const std::vector<int> &components, int level)
{
    return std::none_of(components.begin(), components.end(),
                        [&](int component) { return raster.levelRect(component, level).isEmpty(); });
}

int chooseLevel(const RasterInfo &raster, const ViewRequest &request)
{
    const double pitchX = std::abs(request.datasetRect.right - request.datasetRect.left) / request.width;
    const double pitchY = std::abs(request.datasetRect.bottom - request.datasetRect.top) / request.height;
    const bool coarser = request.coarserNearest && request.resampleMethod == PLK_RESAMPLE_NEAREST;
    const double largestCell = coarser ? kMaxCoarserCell : kMaxCell;
    const int sharp = levelFor(std::min(pitchX, pitchY), largestCell);
    const int squeezed = levelFor(std::max(pitchX, pitchY), largestCell) - kSqueezedLevels;
    int level = std::clamp(std::max(sharp, squeezed), 0, std::max(0, raster.levels - 1));
    while (level > 0 && !isLevelUsable(raster, request.components, level))
        --level;
    return level;
}

} // namespace xrv
