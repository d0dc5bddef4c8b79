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
constexpr std::int64_t kDisplayCells = 65536;
// A level has four times the cells of the next, and some for odd sizes.
constexpr std::int64_t kMostOverEnough = 6;
// Of an estimate, of each band and of all of them: what takes some tenths of a second on two cores.
constexpr std::int64_t kEstimatedCells = 1 << 20, kEstimatedCellsOfAllBands = 3 << 20;
// More bands than images of the world have: each gets fewer cells, so that all of them take about a second.
constexpr int kManyBands = 1024;
constexpr std::int64_t kMinCellsOfManyBands = 256, kWindowsOfManyBands = 16384;
// Windows of full resolution begin between code-blocks of the usual size.
constexpr std::int64_t kEstimateGrid = 64;
// Of all bands that are decoded in one piece. A strip of a scene without tiles should be as high as many code-blocks,
// as those at its edges are decoded twice.
constexpr std::int64_t kMaxCellsPerPiece = 12 << 20;
constexpr std::int64_t kMinPieceHeight = 256;
// Of all bands: a day's work and more. What claims to have more is a damaged header as a rule.
constexpr double kMaxCellsToCount = 1e12;
constexpr std::size_t kMaxBuckets = 65536;
constexpr std::size_t kMaxBucketsOfAllBands = std::size_t(4) << 20; // 32 MiB
constexpr std::size_t kMaxCounterBytes = std::size_t(64) << 20;
constexpr std::int64_t kMaxStripBytes = std::int64_t(32) << 20;

std::int64_t cellsAtLevel(const RasterInfo &info, int level)
{
    return ceilShift(info.width, level) * ceilShift(info.height, level);
}

IntRect datasetRect(const RasterInfo &info)
{
    return {0, 0, info.width, info.height};
}

/// All of the image, in strips that are no larger than what may be held at once.
std::vector<IntRect> planStrips(const RasterInfo &info, int level, int bandCount)
{
    const std::int64_t rowBytes = ceilShift(info.width, level) * bandCount * 4;
    const std::int64_t rows = std::max<std::int64_t>(1, kMaxStripBytes / rowBytes) << level;
    std::vector<IntRect> strips;
    for (std::int64_t y = 0; y < info.height; y += rows)
        strips.push_back({0, y, info.width, std::min<std::int64_t>(y + rows, info.height)});
    return strips;
}

/// Squares spread evenly, \a maxCells together. They begin at multiples of \a grid.
std::vector<IntRect> planWindows(const RasterInfo &info, int level, std::int64_t maxCells, std::int64_t grid = 1,
                                 std::int64_t leastSide = 16)
{
    std::int64_t side = 256;
    while (side > leastSide && side * side * 16 > maxCells)
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
            const std::int64_t x = column * info.width / across / grid * grid,
                               y = row * info.height / down / grid * grid;
            windows.push_back(IntRect{x, y, x + step, y + step}.intersected(datasetRect(info)));
        }
    }
    return windows;
}

/// Where an image of \a size cells from canvas place \a begin is cut that has cells of \a step and pieces of
/// \a pieceSize, in dataset cells: 0, the cuts, \a size.
std::vector<std::int64_t> cutsOf(std::int64_t size, std::int64_t begin, std::int64_t step, std::int64_t pieceSize)
{
    const std::int64_t firstCell = ceilDiv(begin, step);
    std::vector<std::int64_t> cuts{0};
    for (std::int64_t place = begin / pieceSize * pieceSize + pieceSize;; place += pieceSize) {
        const std::int64_t cut = std::min(size, ceilDiv(place, step) - firstCell);
        if (cut > cuts.back())
            cuts.push_back(cut);
        if (cut == size)
            return cuts;
    }
}

struct PieceSize
{
    std::int64_t width, height; ///< on the canvas
};

std::int64_t powerOfTwoUpTo(std::int64_t size)
{
    std::int64_t power = 1;
    while (power * 2 <= size)
        power *= 2;
    return power;
}

/// Several tiles, or a part of one that is too large.
PieceSize pieceSizeFor(const RasterInfo &info, std::int64_t maxCells)
{
    const auto tileSize = [](std::int64_t tile, std::int64_t end) { return tile > 0 ? std::min(tile, end) : end; };
    const PieceSize tile{tileSize(info.tileWidth, info.canvasX1), tileSize(info.tileHeight, info.canvasY1)};
    const std::int64_t most = maxCells * info.minStepX * info.minStepY;
    if (tile.width > most / tile.height) {
        const std::int64_t height =
            std::min(tile.height, powerOfTwoUpTo(std::max(std::min(kMinPieceHeight, most), most / tile.width)));
        return {std::min(tile.width, powerOfTwoUpTo(std::max<std::int64_t>(1, most / height))), height};
    }
    const std::int64_t tiles = most / (tile.width * tile.height);
    const std::int64_t across = std::min(tiles, ceilDiv(info.canvasX1, tile.width));
    return {across * tile.width, tiles / across * tile.height};
}

/// All of the image, tiles together where these can be held at once.
std::vector<IntRect> planPieces(const RasterInfo &info, int bandCount)
{
    const PieceSize piece = pieceSizeFor(info, std::max<std::int64_t>(1, kMaxCellsPerPiece / bandCount));
    const std::vector<std::int64_t> columns = cutsOf(info.width, info.canvasX0, info.minStepX, piece.width);
    const std::vector<std::int64_t> rows = cutsOf(info.height, info.canvasY0, info.minStepY, piece.height);
    std::vector<IntRect> pieces;
    for (std::size_t row = 1; row < rows.size(); ++row)
        for (std::size_t column = 1; column < columns.size(); ++column)
            pieces.push_back({columns[column - 1], rows[row - 1], columns[column], rows[row]});
    return pieces;
}

StatisticsPlan planEstimate(const RasterInfo &info, int bandCount)
{
    const std::int64_t cells = std::clamp(kEstimatedCellsOfAllBands / bandCount, kMinCells, kEstimatedCells);
    // As large as code-blocks are: smaller ones would be no less work.
    if (bandCount > kManyBands)
        return {0, planWindows(info, 0, kWindowsOfManyBands / bandCount * kEstimateGrid * kEstimateGrid, kEstimateGrid,
                               kEstimateGrid)};
    return {0, cellsAtLevel(info, 0) <= cells ? planStrips(info, 0, bandCount)
                                              : planWindows(info, 0, cells, kEstimateGrid)};
}

StatisticsPlan planDisplay(const RasterInfo &info, int bandCount, bool fullResolutionOnly)
{
    const bool areMany = bandCount > kManyBands;
    const std::int64_t share = kMaxCellsOfAllBands / bandCount / (areMany ? kMostOverEnough : 1);
    const std::int64_t enough = std::clamp(share, areMany ? kMinCellsOfManyBands : kMinCells, kDisplayCells);
    StatisticsPlan plan;
    while (!fullResolutionOnly && plan.level + 1 < info.codedLevels && cellsAtLevel(info, plan.level + 1) >= enough)
        ++plan.level;
    const std::int64_t most = enough * kMostOverEnough;
    plan.windows = cellsAtLevel(info, plan.level) <= most ? planStrips(info, plan.level, bandCount)
                                                          : planWindows(info, plan.level, most);
    return plan;
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

bool isEmpty(const PLKBandStatistics &band)
{
    return std::all_of(band.pHistogram, band.pHistogram + band.nHistBucketCount,
                       [](std::uint64_t count) { return count == 0; });
}

/// One computation: goes through the image for one group of bands after the other.
class Computation
{
public:
    Computation(RasterReader &reader, const BandMap &map, StatisticsKind kind, const StatisticsControl &control,
                bool leavesOutHidden)
        : reader(reader)
        , map(map)
        , control(control)
        , leavesOutHidden(leavesOutHidden)
        , isExact(kind == StatisticsKind::Exact)
        , plan(planStatistics(reader.info(), static_cast<int>(map.bands().size()), kind, map.hasPalette()))
    {
        manner.resilient = control.resilient;
        manner.cancel = control.cancel;
        manner.isKept = !isExact && map.bands().size() <= kManyBands;
        manner.margin = manner.isKept ? manner.margin : 0;
    }

    CError run(PLKBandStatistics *statistics)
    {
        std::vector<std::vector<int>> groups;
        for (std::size_t begin = 0; begin < map.bands().size(); begin += groups.back().size()) {
            groups.push_back(nextGroup(map.bands(), begin));
            windowsToRead += plan.windows.size() * passesFor(groups.back());
        }
        for (const std::vector<int> &group : groups)
            if (CError error = countGroup(group, statistics))
                return error;
        return {};
    }

private:
    const Band &band(int number) const { return map.bands()[static_cast<std::size_t>(number)]; }

    std::size_t passesFor(const std::vector<int> &group) const
    {
        return std::any_of(group.begin(), group.end(),
                           [this](int number) { return BandCounter::passesFor(band(number).bits) > 1; })
                   ? 2
                   : 1;
    }

    CError countGroup(const std::vector<int> &group, PLKBandStatistics *statistics)
    {
        std::vector<BandCounter> counters;
        for (int number : group)
            counters.emplace_back(band(number).bits, band(number).isSigned, bucketLimit(map.bands().size()),
                                  band(number).kind);
        BandRows rows(reader, map, group, control.faults);
        rows.readLike(manner);
        if (leavesOutHidden)
            rows.leaveOutHidden();
        bool again = true;
        while (again) {
            if (CError error = countOnce(rows, &counters))
                return error;
            again = false;
            for (BandCounter &counter : counters)
                again = counter.beginNextPass() || again;
        }
        for (std::size_t i = 0; i < group.size(); ++i)
            counters[i].finish(&statistics[group[i]]);
        return {};
    }

    /// Goes through the image once for the bands of \a rows.
    CError countOnce(BandRows &rows, std::vector<BandCounter> *counters)
    {
        if (!isExact) // all at once would be the whole file
            if (CError error = rows.prefetch(plan.windows, plan.level))
                return error;
        for (const IntRect &window : plan.windows) {
            if (control.cancel.isRaised())
                return {PLK_ERR_CANCELLED, "The counting of cells was cancelled."};
            if (CError error = rows.read(window, plan.level, counters))
                return error;
            ++windowsRead;
            if (control.progress)
                control.progress(static_cast<int>(windowsRead * 100 / windowsToRead));
        }
        return {};
    }

    RasterReader &reader;
    const BandMap &map;
    const StatisticsControl &control;
    const bool leavesOutHidden;
    const bool isExact;
    const StatisticsPlan plan;
    ReadRequest manner;
    std::size_t windowsToRead = 0, windowsRead = 0;
};

} // namespace

StatisticsPlan planStatistics(const RasterInfo &info, int bandCount, StatisticsKind kind, bool fullResolutionOnly)
{
    bandCount = std::max(1, bandCount);
    if (kind == StatisticsKind::Exact)
        return {0, planPieces(info, bandCount)};
    return kind == StatisticsKind::Estimate ? planEstimate(info, bandCount)
                                            : planDisplay(info, bandCount, fullResolutionOnly);
}

CError computeStatistics(RasterReader &reader, const BandMap &map, StatisticsKind kind,
                         const StatisticsControl &control, StatisticsPtr *statistics)
{
    const double cells = static_cast<double>(cellsAtLevel(reader.info(), 0)) * static_cast<double>(map.bands().size());
    if (kind == StatisticsKind::Exact && cells > kMaxCellsToCount)
        return {PLK_ERR_UNSUPPORTED, "The image has too many cells to count them all."};
    StatisticsPtr result = makeStatisticsRecord(map.bands().size());
    if (CError error = Computation(reader, map, kind, control, true).run(result->pBandStats))
        return error;
    // An image that is nowhere quite opaque has a contrast, too.
    if (kind == StatisticsKind::Display && isEmpty(result->pBandStats[0])) {
        result = makeStatisticsRecord(map.bands().size());
        if (CError error = Computation(reader, map, kind, control, false).run(result->pBandStats))
            return error;
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
    for (auto gone = static_cast<double>(begin[low]); gone <= cut && low < last;
         gone += static_cast<double>(begin[low]))
        ++low;
    for (auto gone = static_cast<double>(begin[high]); gone <= cut && high > low;
         gone += static_cast<double>(begin[high]))
        --high;
    const double width = last > first ? (largest - smallest) / static_cast<double>(last - first) : 0.0;
    return {smallest + static_cast<double>(low - first) * width, smallest + static_cast<double>(high - first) * width};
}

} // namespace xrv
