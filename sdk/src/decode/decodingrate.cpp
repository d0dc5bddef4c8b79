#include "decodingrate.h"

#include "decode/threads/decodepool.h"

#include <algorithm>

namespace xrv {

namespace {

constexpr double kNanosecondsPerCell = 10.0, kNanosecondsPerBit = 25.0;
constexpr double kMaxBitsPerCell = 16.0;
/// What a bit takes to come from a distant source, at 20 Mbit/s.
constexpr double kLineNanosecondsPerBit = 50.0;
/// Cost of one job besides its cells.
constexpr double kMillisecondsPerJob = 0.3;
/// Weight of the newest measurement.
constexpr double kNewestWeight = 0.3;
/// Fewer cells say nothing: what is around them takes longer.
constexpr double kFewCells = 50000.0;

} // namespace

DecodingRate::DecodingRate(const RasterInfo &raster, std::uint64_t bytes, bool isRemote)
{
    // Code-blocks take time by the bit, and so does a line.
    const double cells = double(raster.width) * raster.height * double(raster.components.size());
    const double bitsPerCell = std::min(kMaxBitsPerCell, 8.0 * double(bytes) / cells);
    double guess = kNanosecondsPerCell + kNanosecondsPerBit * bitsPerCell;
    if (isRemote)
        guess += kLineNanosecondsPerBit * bitsPerCell * DecodePool::threads();
    nanosecondsPerCell = guess;
}

double DecodingRate::milliseconds(double cells, std::size_t jobs) const
{
    return (cells * nanosecondsPerCell * 1e-6 + double(jobs) * kMillisecondsPerJob) / double(DecodePool::threads());
}

void DecodingRate::learn(double cells, double nanoseconds)
{
    if (cells > kFewCells)
        nanosecondsPerCell =
            (1.0 - kNewestWeight) * nanosecondsPerCell + kNewestWeight * nanoseconds * DecodePool::threads() / cells;
}

} // namespace xrv
