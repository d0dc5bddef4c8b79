#include "tilesynthesis.h"

#include "base/planerow.h"
#include "decode/transform/planeops.h"
#include "decode/transform/quantization.h"
#include "decode/transform/wrappingsum.h"

#include <algorithm>
#include <type_traits>

using PLK::CError;

namespace xrv {

namespace {

/// Samples of more bits have coefficients that need more than 32 bits, since these are kept doubled and need a few bits
/// beyond those of the samples.
constexpr int kDeepBits = 26;

/// Reversible coefficients lose the half that the code-block decoder added, towards 0; others are scaled by their step.
template <typename T, typename Stored> inline T dequantized(Stored doubled, float halfStep)
{
    if constexpr (std::is_integral_v<T>)
        return static_cast<T>(doubled / 2);
    else
        return static_cast<T>(doubled) * static_cast<T>(halfStep);
}

template <typename T, typename Stored>
void copyCodeBlock(const Plane &codeBlock, const IntRect &common, float halfStep, Grid<T> *band)
{
    for (std::int64_t y = common.y0; y < common.y1; ++y) {
        const Stored *from = codeBlock.row<Stored>(y) + (common.x0 - codeBlock.rect.x0);
        T *to = band->row(y) + (common.x0 - band->rect.x0);
        for (std::int64_t i = 0; i < common.width(); ++i)
            to[i] = dequantized<T>(from[i], halfStep);
    }
}

/// Reversible (G.2.2), with sums that go around: damaged data must not overflow. The irreversible one is G.3.2.
template <typename T> void inverseTransform(T *a, T *b, T *c, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i) {
        if constexpr (std::is_integral_v<T>) {
            const T green = differenceOf(a[i], T(sumOf(b[i], c[i]) >> 2));
            const T red = sumOf(c[i], green), blue = sumOf(b[i], green);
            a[i] = red;
            b[i] = green;
            c[i] = blue;
        } else {
            const T red = a[i] + T(1.402) * c[i];
            const T green = a[i] - T(0.344136) * b[i] - T(0.714136) * c[i];
            const T blue = a[i] + T(1.772) * b[i];
            a[i] = red;
            b[i] = green;
            c[i] = blue;
        }
    }
}

/// What a sample of a component may be, and what is added to the coefficients to get there (G.1). Lossy coding
/// overshoots the range, so samples are clipped to it.
template <typename T> struct SampleRange
{
    T shift, low, high;
};

template <typename T> SampleRange<T> rangeOf(const MainHeader::Component &component)
{
    const std::int64_t half = std::int64_t(1) << (component.bits - 1);
    return {static_cast<T>(component.isSigned ? 0 : half), static_cast<T>(component.isSigned ? -half : 0),
            static_cast<T>(component.isSigned ? half - 1 : 2 * half - 1)};
}

/// Real numbers are rounded by cutting off what is not negative, which the compiler turns into vector instructions.
/// What is no number becomes the lowest sample.
template <typename T, typename Sample>
void storeRow(const T *from, std::int64_t count, const MainHeader::Component &component, Sample *to)
{
    using Integer = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
    const SampleRange<Integer> range = rangeOf<Integer>(component);
    const int dropped = sizeof(T) == 4 ? 0 : std::max(0, component.bits - kMaxSampleBits);
    if constexpr (std::is_integral_v<T>) {
        const T lowest = range.low - range.shift, highest = range.high - range.shift;
        for (std::int64_t i = 0; i < count; ++i)
            to[i] = static_cast<Sample>((std::min(std::max(from[i], lowest), highest) + range.shift) >> dropped);
    } else {
        const T offset = static_cast<T>(range.shift - range.low) + T(0.5);
        const auto highest = static_cast<T>(range.high - range.low);
        for (std::int64_t i = 0; i < count; ++i) {
            const T value = std::min(highest + T(0.25), std::max(T(0), from[i] + offset));
            to[i] = static_cast<Sample>((static_cast<Integer>(value) + range.low) >> dropped);
        }
    }
}

} // namespace

CError TileSynthesis::check(const MainHeader &header, const TileToDecode &tile)
{
    const auto unsupported = [&tile](const std::string &what) {
        return CError(PLK_ERR_UNSUPPORTED,
                      "Tile " + std::to_string(tile.tile) + " has " + what + ", which is not supported.");
    };
    const std::uint64_t packets = tile.index->packets().count();
    if (packets > kMaxPackets)
        return unsupported("more than " + std::to_string(kMaxPackets) +
                           " packets by its size, precincts and layers (SIZ, COD)");
    for (const TileIndex::Quantization &quantization : tile.index->quantization()) {
        const int style = quantization.parameters.empty() ? 0 : quantization.parameters[0] & 31;
        if (style > 2)
            return unsupported("quantization style " + std::to_string(style) + " (Sqcd of QCD or QCC)");
        if (!quantization.regionOfInterest.empty() && quantization.regionOfInterest[0] != 0)
            return unsupported("a region of interest of style " + std::to_string(quantization.regionOfInterest[0]) +
                               " (Srgn of RGN)");
    }
    // The component transformation is made cell by cell, so its components have to be alike (G.2, G.3).
    const TileStyle &style = tile.index->style();
    if (!style.multipleComponentTransform || style.components.size() < 3)
        return {};
    for (int c = 1; c < 3; ++c)
        if (style.components[c].isReversible != style.components[0].isReversible ||
            header.components[c].stepX != header.components[0].stepX ||
            header.components[c].stepY != header.components[0].stepY)
            return unsupported("a component transformation (SGcod of COD is 1) of components 0 and " +
                               std::to_string(c) + " with different sampling or wavelets (SIZ, COC)");
    return {};
}

bool TileSynthesis::isDeep() const
{
    return std::any_of(header.components.begin(), header.components.end(),
                       [](const MainHeader::Component &component) { return component.bits > kDeepBits; });
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
        else if (codeBlock->type == SampleType::Int32)
            copyCodeBlock<T, std::int32_t>(*codeBlock, common, halfStep, band);
        else
            copyCodeBlock<T, std::int64_t>(*codeBlock, common, halfStep, band);
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
    Plane plane = makePlane(component, rect, sampleTypeFor(std::min<int>(info.bits, kMaxSampleBits), info.isSigned));
    withSampleType(plane.type, [&](auto sample) {
        using Sample = decltype(sample);
        auto *to = reinterpret_cast<Sample *>(plane.bytes.data());
        for (std::int64_t y = rect.y0; y < rect.y1; ++y, to += rect.width())
            storeRow(cells.row(y) + (rect.x0 - cells.rect.x0), rect.width(), info, to);
    });
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

template <typename Integer, typename Real>
std::vector<Plane> TileSynthesis::planesOf(const CodeBlockSet &codeBlocks, const std::vector<int> &components,
                                           int discarded, const IntRect &region, const CancelFlag &cancel) const
{
    const TileStyle &style = tile.index->style();
    std::vector<Plane> result;
    std::size_t next = 0;
    if (usesTransform(components)) {
        result = style.components[0].isReversible ? transformed<Integer>(codeBlocks, discarded, region)
                                                  : transformed<Real>(codeBlocks, discarded, region);
        next = 3;
    }
    for (; next < components.size() && !cancel.isRaised(); ++next)
        result.push_back(style.components[components[next]].isReversible
                             ? single<Integer>(codeBlocks, components[next], discarded, region)
                             : single<Real>(codeBlocks, components[next], discarded, region));
    return result;
}

std::vector<Plane> TileSynthesis::planes(const CodeBlockSet &codeBlocks, const std::vector<int> &components,
                                         int discarded, const IntRect &region, const CancelFlag &cancel) const
{
    return isDeep() ? planesOf<std::int64_t, double>(codeBlocks, components, discarded, region, cancel)
                    : planesOf<std::int32_t, float>(codeBlocks, components, discarded, region, cancel);
}

Plane TileSynthesis::blank(int component, const IntRect &rect) const
{
    Grid<std::int64_t> zeros;
    zeros.reset(rect);
    return toPlane(component, rect, zeros);
}

} // namespace xrv
