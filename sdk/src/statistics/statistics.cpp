#include "statistics.h"

#include "bandcounter.h"
#include "bandrows.h"

#include <xrv60/plkinit.h>

#include <algorithm>
#include <cmath>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::int64_t kMaxCellsOfAllBands = 64'000'000; // what can be read in reasonable time
constexpr std::int64_t kMinCells = 4096;
constexpr std::size_t kMaxBuckets = 65536;
constexpr std::size_t kMaxBucketsOfAllBands = std::size_t(4) << 20; // 32 MiB
constexpr std::size_t kMaxCounterBytes = std::size_t(64) << 20;
constexpr std::int64_t kMaxStripBytes = std::int64_t(32) << 20;

std::int64_t sizeAtLevel(std::uint32_t size, int level)
{
    return (std::int64_t(size) + (std::int64_t(1) << level) - 1) >> level;
}

std::int64_t cellsAtLevel(const RasterInfo &info, int level)
{
    return sizeAtLevel(info.width, level) * sizeAtLevel(info.height, level);
}

IntRect datasetRect(const RasterInfo &info)
{
    return {0, 0, info.width, info.height};
}

/// All of the image, in strips that are no larger than what may be held at once.
std::vector<IntRect> planStrips(const RasterInfo &info, int level, int bandCount)
{
    const std::int64_t rowBytes = sizeAtLevel(info.width, level) * bandCount * 4;
    const std::int64_t rows = std::max<std::int64_t>(1, kMaxStripBytes / rowBytes) << level;
    std::vector<IntRect> strips;
    for (std::int64_t y = 0; y < info.height; y += rows)
        strips.push_back({0, y, info.width, std::min<std::int64_t>(y + rows, info.height)});
    return strips;
}

/// Squares spread evenly, \a maxCells together.
std::vector<IntRect> planWindows(const RasterInfo &info, int level, std::int64_t maxCells)
{
    std::int64_t side = 256;
    while (side > 16 && side * side * 16 > maxCells)
        side /= 2;
    const std::int64_t count = std::max<std::int64_t>(1, maxCells / (side * side));
    const std::int64_t step = side << level;
    const double aspect = static_cast<double>(info.width) / info.height;
    const auto fits = [step](std::uint32_t size) { return std::max<std::int64_t>(1, size / step); };
    const std::int64_t across =
        std::clamp<std::int64_t>(std::llround(std::sqrt(static_cast<double>(count) * aspect)), 1, fits(info.width));
    const std::int64_t down = std::clamp<std::int64_t>(count / across, 1, fits(info.height));
    std::vector<IntRect> windows;
    for (std::int64_t row = 0; row < down; ++row) {
        for (std::int64_t column = 0; column < across; ++column) {
            const std::int64_t x = column * info.width / across, y = row * info.height / down;
            windows.push_back(IntRect{x, y, x + step, y + step}.intersected(datasetRect(info)));
        }
    }
    return windows;
}

std::size_t bucketLimit(std::size_t bandCount)
{
    return std::clamp(kMaxBucketsOfAllBands / std::max<std::size_t>(1, bandCount), std::size_t(256), kMaxBuckets);
}

/// Bands whose counters fit into memory together, from \a begin on.
std::vector<int> nextGroup(const std::vector<Band> &bands, std::size_t begin)
{
    std::vector<int> group;
    std::size_t bytes = 0;
    for (std::size_t band = begin; band < bands.size(); ++band) {
        bytes += BandCounter::memoryFor(bands[band].bits);
        if (!group.empty() && bytes > kMaxCounterBytes)
            break;
        group.push_back(static_cast<int>(band));
    }
    return group;
}

/// Goes through the image once for the bands of \a rows.
CError countOnce(BandRows &rows, const StatisticsPlan &plan, bool resilient, std::vector<BandCounter> *counters)
{
    if (CError error = rows.prefetch(plan.windows, plan.level, resilient))
        return error;
    for (const IntRect &window : plan.windows) {
        if (CError error = rows.read(window, plan.level, resilient, counters))
            return error;
    }
    return {};
}

CError countGroup(RasterReader &reader, const BandMap &map, const std::vector<int> &group, StatisticsDetail detail,
                  bool resilient, PLKBandStatistics *statistics, FaultLog *faults)
{
    const std::vector<Band> &bands = map.bands();
    const StatisticsPlan plan = planStatistics(reader.info(), static_cast<int>(bands.size()), map.hasPalette(), detail);
    std::vector<BandCounter> counters;
    for (int band : group)
        counters.emplace_back(bands[static_cast<std::size_t>(band)].bits,
                              bands[static_cast<std::size_t>(band)].isSigned, bucketLimit(bands.size()));
    BandRows rows(reader, map, group, faults);
    bool again = true;
    while (again) {
        if (CError error = countOnce(rows, plan, resilient, &counters))
            return error;
        again = false;
        for (BandCounter &counter : counters)
            again = counter.beginNextPass() || again;
    }
    for (std::size_t i = 0; i < group.size(); ++i)
        counters[i].finish(&statistics[group[i]]);
    return {};
}

} // namespace

StatisticsPlan planStatistics(const RasterInfo &info, int bandCount, bool fullResolutionOnly, StatisticsDetail detail)
{
    const std::int64_t share = kMaxCellsOfAllBands / std::max(1, bandCount);
    const std::int64_t enough = std::clamp(share, kMinCells, static_cast<std::int64_t>(detail));
    StatisticsPlan plan;
    while (!fullResolutionOnly && plan.level + 1 < info.codedLevels && cellsAtLevel(info, plan.level + 1) >= enough)
        ++plan.level;
    const std::int64_t most = enough * 6; // a level has four times the cells of the next, and some for odd sizes
    plan.windows = cellsAtLevel(info, plan.level) <= most ? planStrips(info, plan.level, bandCount)
                                                          : planWindows(info, plan.level, most);
    return plan;
}

CError computeStatistics(RasterReader &reader, const BandMap &map, StatisticsDetail detail, bool resilient,
                         StatisticsPtr *statistics, FaultLog *faults)
{
    const std::size_t bandCount = map.bands().size();
    StatisticsPtr result = makeStatisticsRecord(bandCount);
    for (std::size_t begin = 0; begin < bandCount;) {
        const std::vector<int> group = nextGroup(map.bands(), begin);
        if (CError error = countGroup(reader, map, group, detail, resilient, result->pBandStats, faults))
            return error;
        begin += group.size();
    }
    *statistics = std::move(result);
    return {};
}

std::pair<double, double> clipRange(const PLKBandStatistics &statistics, double percent)
{
    const double smallest = statistics.fMin, largest = statistics.fMax;
    const std::uint64_t *begin = statistics.pHistogram;
    const std::uint64_t *end = begin + statistics.nHistBucketCount;
    double total = 0.0;
    for (const std::uint64_t *bucket = begin; bucket != end; ++bucket)
        total += static_cast<double>(*bucket);
    if (!(percent < 100.0) || total == 0.0)
        return {smallest, largest};
    const double cut = total * (100.0 - std::max(0.0, percent)) / 200.0;

    // The first bucket with cells holds the smallest value and the last one the largest, whatever the buckets' width.
    const auto isFilled = [](std::uint64_t count) { return count > 0; };
    const auto first = std::find_if(begin, end, isFilled) - begin;
    auto last = end - begin - 1;
    while (begin[last] == 0)
        --last;
    auto low = first, high = last;
    for (double gone = static_cast<double>(begin[low]); gone <= cut && low < last;
         gone += static_cast<double>(begin[low]))
        ++low;
    for (double gone = static_cast<double>(begin[high]); gone <= cut && high > low;
         gone += static_cast<double>(begin[high]))
        --high;
    const double width = last > first ? (largest - smallest) / static_cast<double>(last - first) : 0.0;
    return {smallest + static_cast<double>(low - first) * width, smallest + static_cast<double>(high - first) * width};
}

} // namespace xrv
