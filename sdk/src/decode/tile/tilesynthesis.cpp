#include "tilesynthesis.h"

#include "decode/transform/planeops.h"
#include "decode/transform/quantization.h"
#include "decode/transform/wrappingsum.h"

#include <algorithm>

namespace xrv {

namespace {

/// Reversible coefficients lose the half that the code-block decoder added, towards 0; others are scaled by their step.
inline std::int32_t dequantized(std::int32_t doubled, float, std::int32_t)
{
    return doubled / 2;
}
inline float dequantized(std::int32_t doubled, float halfStep, float)
{
    return static_cast<float>(doubled) * halfStep;
}

template <typename T, typename Stored>
void copyCodeBlock(const Plane &codeBlock, const IntRect &common, float halfStep, Grid<T> *band)
{
    for (std::int64_t y = common.y0; y < common.y1; ++y) {
        const Stored *from = codeBlock.row<Stored>(y) + (common.x0 - codeBlock.rect.x0);
        T *to = band->row(y) + (common.x0 - band->rect.x0);
        for (std::int64_t i = 0; i < common.width(); ++i)
            to[i] = dequantized(from[i], halfStep, T());
    }
}

/// Reversible (G.2.2), with sums that go around: damaged data must not overflow. The irreversible one is G.3.2.
void inverseTransform(std::int32_t *a, std::int32_t *b, std::int32_t *c, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int32_t green = differenceOf(a[i], sumOf(b[i], c[i]) >> 2);
        const std::int32_t red = sumOf(c[i], green), blue = sumOf(b[i], green);
        a[i] = red;
        b[i] = green;
        c[i] = blue;
    }
}
void inverseTransform(float *a, float *b, float *c, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i) {
        const float red = a[i] + 1.402f * c[i];
        const float green = a[i] - 0.344136f * b[i] - 0.714136f * c[i];
        const float blue = a[i] + 1.772f * b[i];
        a[i] = red;
        b[i] = green;
        c[i] = blue;
    }
}

/// What a sample of a component may be, and what is added to the coefficients to get there (G.1). Lossy coding
/// overshoots the range, so samples are clipped to it.
struct SampleRange
{
    std::int32_t shift, low, high;
};

template <typename Sample>
void storeRow(const std::int32_t *from, std::int64_t count, const SampleRange &range, Sample *to)
{
    const std::int32_t lowest = range.low - range.shift, highest = range.high - range.shift;
    for (std::int64_t i = 0; i < count; ++i)
        to[i] = static_cast<Sample>(std::min(std::max(from[i], lowest), highest) + range.shift);
}

/// Rounds by cutting off what is not negative, which the compiler turns into vector instructions. What is no number
/// becomes the lowest sample.
template <typename Sample> void storeRow(const float *from, std::int64_t count, const SampleRange &range, Sample *to)
{
    const float offset = static_cast<float>(range.shift - range.low) + 0.5f;
    const auto highest = static_cast<float>(range.high - range.low);
    for (std::int64_t i = 0; i < count; ++i) {
        const float value = std::min(highest + 0.25f, std::max(0.0f, from[i] + offset));
        to[i] = static_cast<Sample>(static_cast<std::int32_t>(value) + range.low);
    }
}

} // namespace

bool TileSynthesis::supports(const MainHeader &header, const TileIndex &index)
{
    // Coefficients are kept doubled in 32 bits and need a few bits beyond those of the samples. The component
    // transformation is made cell by cell, so its components have to be alike (G.2, G.3).
    const TileStyle &style = index.style();
    if (!index.hasPacketPlaces())
        return false;
    for (std::size_t c = 0; c < style.components.size(); ++c)
        if (header.components[c].bits > 26)
            return false;
    if (!style.multipleComponentTransform)
        return true;
    if (style.components.size() < 3)
        return false;
    for (int c = 1; c < 3; ++c)
        if (style.components[c].isReversible != style.components[0].isReversible ||
            header.components[c].stepX != header.components[0].stepX ||
            header.components[c].stepY != header.components[0].stepY)
            return false;
    return true;
}

bool TileSynthesis::usesTransform(const std::vector<int> &components) const
{
    return tile.index->style().multipleComponentTransform && components.size() >= 3 && components[0] == 0;
}

/// Dequantized coefficients of a subband. Code-blocks that are missing stay 0, which blurs or blanks the place but
/// spoils nothing else.
template <typename T>
void TileSynthesis::loadBand(const CodeBlockSet &codeBlocks, int component, int resolution, int orientation,
                             const IntRect &rect, Grid<T> *band) const
{
    const ComponentStyle &style = tile.index->style().components[component];
    const BandQuantization quantization =
        bandQuantization(tile.index->quantization()[component].parameters, style.isReversible,
                         header.components[component].bits, resolution, orientation);
    const float halfStep = 0.5f * quantization.stepSize; // coefficients are doubled
    band->reset(rect);
    std::vector<CodeBlockPlace> places;
    appendCodeBlocks(componentRect(tile.index->rect(), header.components[component]), style, component, resolution,
                     orientation, rect, &places);
    for (const CodeBlockPlace &place : places) {
        const Plane *codeBlock = codeBlocks.find(component, place.name.number());
        const IntRect common = place.rect.intersected(rect);
        if (!codeBlock || common.isEmpty())
            continue;
        if (codeBlock->type == SampleType::Int16)
            copyCodeBlock<T, std::int16_t>(*codeBlock, common, halfStep, band);
        else
            copyCodeBlock<T, std::int32_t>(*codeBlock, common, halfStep, band);
    }
}

template <typename T>
void TileSynthesis::synthesizeComponent(const CodeBlockSet &codeBlocks, int component, int discarded,
                                        const IntRect &region, Grid<T> *cells) const
{
    const int levels = tile.index->style().components[component].decompositionLevels;
    const IntRect tileComponent = componentRect(tile.index->rect(), header.components[component]);

    // What every resolution has to give, from the highest kept one down: the filters reach further out on each level.
    // Then up again from LL.
    std::vector<IntRect> regions{region};
    for (int level = discarded; level < levels; ++level)
        regions.push_back(neededBandRect(levelRect(tileComponent, level), regions.back(), 0));
    Grid<T> low;
    loadBand(codeBlocks, component, 0, 0, regions.back(), &low);
    for (int level = levels - 1; level >= discarded; --level) {
        const IntRect resolutionRect = levelRect(tileComponent, level);
        const IntRect &wanted = regions[level - discarded];
        Grid<T> high[3];
        for (int orientation = 1; orientation <= 3; ++orientation)
            loadBand(codeBlocks, component, levels - level, orientation,
                     neededBandRect(resolutionRect, wanted, orientation), &high[orientation - 1]);
        const Grid<T> *const bands[4] = {&low, &high[0], &high[1], &high[2]};
        Grid<T> next;
        synthesize(resolutionRect, wanted, bands, &next);
        low = std::move(next);
    }
    *cells = std::move(low);
}

template <typename T> Plane TileSynthesis::toPlane(int component, const IntRect &rect, const Grid<T> &cells) const
{
    const MainHeader::Component &info = header.components[component];
    Plane plane = makePlane(component, rect, sampleTypeFor(info.bits, info.isSigned));
    const std::int64_t half = std::int64_t(1) << (info.bits - 1);
    const SampleRange range{static_cast<std::int32_t>(info.isSigned ? 0 : half),
                            static_cast<std::int32_t>(info.isSigned ? -half : 0),
                            static_cast<std::int32_t>(info.isSigned ? half - 1 : 2 * half - 1)};
    for (std::int64_t y = rect.y0; y < rect.y1; ++y) {
        const T *from = cells.row(y) + (rect.x0 - cells.rect.x0);
        std::uint8_t *to =
            plane.bytes.data() + static_cast<std::size_t>((y - rect.y0) * rect.width()) * sampleSize(plane.type);
        switch (plane.type) {
        case SampleType::UInt8:
            storeRow(from, rect.width(), range, to);
            break;
        case SampleType::Int8:
            storeRow(from, rect.width(), range, reinterpret_cast<std::int8_t *>(to));
            break;
        case SampleType::UInt16:
            storeRow(from, rect.width(), range, reinterpret_cast<std::uint16_t *>(to));
            break;
        case SampleType::Int16:
            storeRow(from, rect.width(), range, reinterpret_cast<std::int16_t *>(to));
            break;
        default:
            storeRow(from, rect.width(), range, reinterpret_cast<std::int32_t *>(to));
            break;
        }
    }
    return plane;
}

template <typename T>
Plane TileSynthesis::single(const CodeBlockSet &codeBlocks, int component, int discarded, const IntRect &region) const
{
    const IntRect rect = componentRect(region, header.components[component]);
    Grid<T> cells;
    if (!rect.isEmpty())
        synthesizeComponent(codeBlocks, component, discarded, rect, &cells);
    return toPlane(component, rect, cells);
}

template <typename T>
std::vector<Plane> TileSynthesis::transformed(const CodeBlockSet &codeBlocks, int discarded,
                                              const IntRect &region) const
{
    const IntRect rect = componentRect(region, header.components[0]);
    Grid<T> cells[3];
    std::vector<Plane> result;
    for (int c = 0; c < 3 && !rect.isEmpty(); ++c)
        synthesizeComponent(codeBlocks, c, discarded, rect, &cells[c]);
    for (std::int64_t y = rect.y0; y < rect.y1; ++y)
        inverseTransform(cells[0].row(y) + (rect.x0 - cells[0].rect.x0), cells[1].row(y) + (rect.x0 - cells[1].rect.x0),
                         cells[2].row(y) + (rect.x0 - cells[2].rect.x0), rect.width());
    for (int c = 0; c < 3; ++c)
        result.push_back(toPlane(c, rect, cells[c]));
    return result;
}

std::vector<Plane> TileSynthesis::planes(const CodeBlockSet &codeBlocks, const std::vector<int> &components,
                                         int discarded, const IntRect &region) const
{
    const TileStyle &style = tile.index->style();
    std::vector<Plane> result;
    std::size_t next = 0;
    if (usesTransform(components)) {
        result = style.components[0].isReversible ? transformed<std::int32_t>(codeBlocks, discarded, region)
                                                  : transformed<float>(codeBlocks, discarded, region);
        next = 3;
    }
    for (; next < components.size(); ++next)
        result.push_back(style.components[components[next]].isReversible
                             ? single<std::int32_t>(codeBlocks, components[next], discarded, region)
                             : single<float>(codeBlocks, components[next], discarded, region));
    return result;
}

} // namespace xrv
