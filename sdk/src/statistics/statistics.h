#pragma once

#include "statisticsrecord.h"

#include "colour/bandmap.h"
#include "decode/rasterreader.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <utility>
#include <vector>

namespace xrv {

class FaultLog;

/// The part of an image that its statistics are made of.
struct StatisticsPlan
{
    int level = 0;
    /// Dataset rectangles that do not overlap: all of the image in strips, or windows spread evenly over one whose
    /// smallest resolution is still too large to be read as a whole.
    std::vector<IntRect> windows;
};

/// How many cells of each band are looked at, at the least.
enum class StatisticsDetail : std::int64_t {
    Full = 750'000,  ///< "about a million"
    Display = 65'536 ///< enough for the contrast of a picture, and soon there also from far away
};

/// The smallest resolution of the codestream with as many cells as \a detail says, or fewer where there are so many
/// bands (more than about 80) that they would be more than 64 million cells together. \a fullResolutionOnly: cells of
/// other levels mean nothing, as with palettes.
StatisticsPlan planStatistics(const RasterInfo &info, int bandCount, bool fullResolutionOnly = false,
                              StatisticsDetail detail = StatisticsDetail::Full);

/// Statistics and histograms of all bands, opacity included. Bands of up to 8 bits have 256 buckets, one per value from
/// 0 or, signed, from -128. Deeper ones have one bucket for each value from the smallest to the largest, or equal
/// buckets between these where that would be more than 65536 (fewer with more than 64 bands). Errors are those of the
/// reader. Cells that could not be decoded count as 0; \a faults, which may be null, is told.
PLK::CError computeStatistics(RasterReader &reader, const BandMap &map, StatisticsDetail detail, bool resilient,
                              StatisticsPtr *statistics, FaultLog *faults = nullptr);

/// Lowest and highest value that are left when (100 - \a percent) / 2 per cent of the cells are cut off at either end;
/// smallest and largest for 100 and more. The second is never below the first.
std::pair<double, double> clipRange(const PLKBandStatistics &statistics, double percent);

} // namespace xrv
