#include "texturedither.h"

#include <algorithm>
#include <vector>

namespace xrv {

namespace {

constexpr int kShownBits = 8;
constexpr std::int32_t kSmoothSteps = 2; ///< 256ths of the range

/// Evenly spread over 32 bits. Finalizer of MurmurHash3, which mixes every bit into all others.
std::uint32_t mixed(std::uint32_t h)
{
    h ^= h >> 16;
    h *= 0x85ebca6bu;
    h ^= h >> 13;
    h *= 0xc2b2ae35u;
    return h ^ (h >> 16);
}

struct Grain
{
    std::uint32_t seed;
    std::int32_t amplitude;

    /// -amplitude to amplitude, each as likely.
    std::int32_t at(std::int64_t x, std::int64_t y) const
    {
        const std::uint32_t hash =
            mixed(mixed(seed + static_cast<std::uint32_t>(y)) + 0x9e3779b9u * static_cast<std::uint32_t>(x));
        const auto values = static_cast<std::uint64_t>(2 * amplitude + 1);
        return static_cast<std::int32_t>(hash * values >> 32) - amplitude;
    }
};

bool isOpacity(const BandMap &bands, int component)
{
    return std::any_of(bands.bands().begin(), bands.bands().end(),
                       [component](const Band &band) { return band.isOpacity && band.component == component; });
}

/// Smallest and largest of each column over the rows next to \a y; those beyond the image do not count.
template <typename Cell> struct ColumnRange
{
    std::vector<Cell> low, high;

    void set(const Plane &plane, std::int64_t y)
    {
        const auto width = static_cast<std::size_t>(plane.rect.width());
        const Cell *row = plane.row<Cell>(y);
        low.assign(row, row + width);
        high = low;
        for (const std::int64_t other : {y - 1, y + 1}) {
            if (other < plane.rect.y0 || other >= plane.rect.y1)
                continue;
            const Cell *cells = plane.row<Cell>(other);
            for (std::size_t x = 0; x < width; ++x) {
                low[x] = std::min(low[x], cells[x]);
                high[x] = std::max(high[x], cells[x]);
            }
        }
    }
    bool isSmooth(std::size_t x, std::int32_t most) const
    {
        const std::size_t first = x > 0 ? x - 1 : 0, last = std::min(x + 1, low.size() - 1);
        Cell least = low[x], largest = high[x];
        for (const std::size_t i : {first, last}) {
            least = std::min(least, low[i]);
            largest = std::max(largest, high[i]);
        }
        return largest - least <= most;
    }
};

template <typename Cell> void ditherCells(const IntRect &inner, const ComponentInfo &info, Grain grain, Plane *plane)
{
    const Plane original = *plane;
    const std::int32_t least = info.isSigned ? -(1 << (info.bits - 1)) : 0;
    const std::int32_t largest = least + ((1 << info.bits) - 1);
    ColumnRange<Cell> range;
    for (std::int64_t y = inner.y0; y < inner.y1; ++y) {
        range.set(original, y);
        const Cell *from = original.row<Cell>(y);
        Cell *to = const_cast<Cell *>(plane->row<Cell>(y));
        for (std::int64_t x = inner.x0; x < inner.x1; ++x) {
            const auto i = static_cast<std::size_t>(x - plane->rect.x0);
            if (range.isSmooth(i, kSmoothSteps * grain.amplitude))
                to[i] = static_cast<Cell>(std::clamp(from[i] + grain.at(x, y), least, largest));
        }
    }
}

/// Cells whose neighbours are all in \a rect, or beyond the image.
IntRect innerRect(IntRect rect, const IntRect &image)
{
    rect.x0 += rect.x0 > image.x0 ? 1 : 0;
    rect.y0 += rect.y0 > image.y0 ? 1 : 0;
    rect.x1 -= rect.x1 < image.x1 ? 1 : 0;
    rect.y1 -= rect.y1 < image.y1 ? 1 : 0;
    return rect;
}

} // namespace

ReadRequest readForDither(const RasterInfo &raster, ReadRequest request)
{
    std::uint32_t step = 1; // coarsest component
    for (const int component : request.components) {
        const ComponentInfo &info = raster.components[static_cast<std::size_t>(component)];
        step = std::max({step, info.stepX / raster.minStepX, info.stepY / raster.minStepY});
    }
    const std::int64_t cell = std::int64_t(step) << request.level;
    const IntRect &rect = request.datasetRect;
    request.datasetRect = IntRect{rect.x0 - cell, rect.y0 - cell, rect.x1 + cell, rect.y1 + cell}.intersected(
        {0, 0, raster.width, raster.height});
    return request;
}

void ditherPlane(const RasterInfo &raster, const BandMap &bands, int level, Plane *plane)
{
    const ComponentInfo &info = raster.components[static_cast<std::size_t>(plane->component)];
    if (info.bits < kShownBits || bands.hasPalette() || isOpacity(bands, plane->component) || plane->rect.isEmpty())
        return;
    const IntRect inner = innerRect(plane->rect, raster.levelRect(plane->component, level));
    const Grain grain{mixed(static_cast<std::uint32_t>(plane->component * 64 + level)), 1 << (info.bits - kShownBits)};
    switch (plane->type) {
    case SampleType::UInt8:
        return ditherCells<std::uint8_t>(inner, info, grain, plane);
    case SampleType::Int8:
        return ditherCells<std::int8_t>(inner, info, grain, plane);
    case SampleType::UInt16:
        return ditherCells<std::uint16_t>(inner, info, grain, plane);
    case SampleType::Int16:
        return ditherCells<std::int16_t>(inner, info, grain, plane);
    default: // deeper cells are no pictures
        return;
    }
}

} // namespace xrv
