#pragma once

#include "statisticsrecord.h"

#include "colour/bandmap.h"
#include "decode/rasterreader.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <functional>
#include <utility>
#include <vector>

namespace xrv {

class FaultLog;

/// How much of an image is looked at.
enum class StatisticsKind {
    Exact,    ///< every cell
    Estimate, ///< cells of full resolution, up to a million of each band: no value that is not in the image
    Display   ///< a small resolution level, whose values are filtered: enough for the contrast of a picture, and soon
              ///< there also from far away
};

/// The part of an image that its statistics are made of.
struct StatisticsPlan
{
    int level = 0;
    /// Dataset rectangles that do not overlap: all of the image piece by piece, or windows spread evenly over it.
    std::vector<IntRect> windows;
};

/// Pieces of a plan for all cells follow the tiles of the codestream as far as these can be held at once. A plan for
/// the display takes the smallest resolution of the codestream with at least 65,536 cells, or windows where even that
/// is too large; \a fullResolutionOnly: cells of other levels mean nothing, as with palettes. Of more bands than three
/// fewer cells of each are estimated, so that it takes no longer.
StatisticsPlan planStatistics(const RasterInfo &info, int bandCount, StatisticsKind kind,
                              bool fullResolutionOnly = false);

/// How statistics are computed, and who is told of it.
struct StatisticsControl
{
    bool resilient = true;      ///< cells that cannot be decoded count as 0
    FaultLog *faults = nullptr; ///< told of such damage; may be null
    CancelFlag cancel;
    std::function<void(int percent)> progress; ///< called on the thread that computes; may be empty
};

/// Statistics and histograms of all bands, opacity included. Cells that an opacity band hides are left out, and so are
/// Floats that are no finite numbers. Bands of up to 8 bits have 256 buckets, one per value from
/// 0 or, signed, from -128. Deeper ones have one bucket for each value from the smallest to the largest, or equal
/// buckets between these where that would be more than 65536 (fewer with more than 64 bands). Errors are those of the
/// reader, PLK_ERR_CANCELLED among them, and PLK_ERR_UNSUPPORTED for more than 10^12 cells to count. All cells are
/// counted past the tile cache: what views need stays there.
PLK::CError computeStatistics(RasterReader &reader, const BandMap &map, StatisticsKind kind,
                              const StatisticsControl &control, StatisticsPtr *statistics);

/// Lowest and highest value that are left when (100 - \a percent) / 2 per cent of the cells are cut off at either end;
/// smallest and largest for 100 and more. The second is never below the first.
std::pair<double, double> clipRange(const PLKBandStatistics &statistics, double percent);

} // namespace xrv
