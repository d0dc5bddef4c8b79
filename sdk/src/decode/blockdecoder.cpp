#include "blockdecoder.h"

#include "../codestream/precinct.h"
#include "mqdecoder.h"

#include <algorithm>
#include <array>
#include <cstring>

#if defined(__GNUC__)
#define XRV_INLINE inline __attribute__((always_inline))
#else
#define XRV_INLINE __forceinline
#endif

namespace xrv {

namespace {

// One word of flags stands for a column of four cells in a stripe (D.1). For row k of the four, bits 3k to 3k + 8 tell
// which cells of the 3 x 3 around it are significant, west to east and north to south; thus bit 3 (k + 1) + 1 is the
// cell itself.
constexpr std::uint32_t kSelf = 1u << 4;
constexpr std::uint32_t kNeighbours = 0x1EF;
constexpr std::uint32_t kAllSignificance = (1u << 18) - 1;
constexpr int kVisitedShift = 18;  ///< coded in this bit-plane's significance propagation pass, rows 0 to 3
constexpr int kRefinedShift = 22;  ///< refined before, rows 0 to 3
constexpr int kNegativeShift = 26; ///< sign, rows 0 to 3
constexpr std::uint32_t kNegativeAbove = 1u << 30; ///< sign of the cell above row 0
constexpr std::uint32_t kNegativeBelow = 1u << 31; ///< sign of the cell below row 3
constexpr std::uint32_t kAllVisited = 15u << kVisitedShift;

// Context numbers (table D.1 to D.5): 0-8 significance, 9-13 sign, 14-16 refinement, 17 run length, 18 uniform.
constexpr int kSignContext = 9, kRefineContext = 14, kRunContext = 17, kUniformContext = 18, kContexts = 19;

/// Significance context of a neighbourhood in a subband (table D.1).
std::uint8_t significanceContext(unsigned neighbourhood, int orientation)
{
    const auto at = [neighbourhood](int bit) { return static_cast<int>(neighbourhood >> bit & 1); };
    int h = at(3) + at(5), v = at(1) + at(7);
    const int d = at(0) + at(2) + at(6) + at(8);
    if (orientation == 1)
        std::swap(h, v);
    if (orientation == 3) {
        const int hv = h + v;
        if (d >= 3)
            return 8;
        if (d == 2)
            return hv >= 1 ? 7 : 6;
        if (d == 1)
            return static_cast<std::uint8_t>(hv >= 2 ? 5 : 3 + hv);
        return static_cast<std::uint8_t>(std::min(hv, 2));
    }
    if (h == 2)
        return 8;
    if (h == 1)
        return static_cast<std::uint8_t>(v >= 1 ? 7 : d >= 1 ? 6 : 5);
    if (v > 0)
        return static_cast<std::uint8_t>(2 + v);
    return static_cast<std::uint8_t>(std::min(d, 2));
}

/// Sign context and the bit that the decoded one is exclusive-ored with (tables D.2, D.3). The index has the
/// significance of the west, east, north and south neighbours in bits 0 to 3 and their signs in bits 4 to 7.
struct SignEntry
{
    std::uint8_t context, flip;
};

SignEntry signEntry(unsigned index)
{
    const auto contribution = [index](int bit) { return index >> bit & 1 ? (index >> (bit + 4) & 1 ? -1 : 1) : 0; };
    int h = std::clamp(contribution(0) + contribution(1), -1, 1);
    int v = std::clamp(contribution(2) + contribution(3), -1, 1);
    const bool flip = h < 0 || (h == 0 && v < 0);
    if (flip) {
        h = -h;
        v = -v;
    }
    const int context = h == 1 ? (v == 1 ? 13 : v == 0 ? 12 : 11) : (v == 1 ? 10 : 9);
    return {static_cast<std::uint8_t>(context), flip};
}

struct Tables
{
    std::array<std::array<std::uint8_t, 512>, 4> significance;
    std::array<SignEntry, 256> sign;
    Tables()
    {
        for (int orientation = 0; orientation < 4; ++orientation)
            for (unsigned n = 0; n < 512; ++n)
                significance[orientation][n] = significanceContext(n, orientation);
        for (unsigned i = 0; i < 256; ++i)
            sign[i] = signEntry(i);
    }
};

const Tables &tables()
{
    static const Tables kTables;
    return kTables;
}

} // namespace

/// The three coding passes over one code-block.
struct BlockDecoder::Passes
{
    const int width, height;
    const bool isCausal; ///< vertically causal contexts: a stripe does not look at the next one (D.7)
    const std::size_t pitch;
    std::uint32_t *const flags; ///< first column of the first stripe; a border all around
    std::int32_t *const cells;
    const std::uint8_t *const significanceTable;
    const SignEntry *const signTable;
    std::array<MqDecoder::Context, kContexts> contexts;

    Passes(const CodeBlock &block, std::vector<std::uint32_t> &storage, std::int32_t *coefficients)
        : width(block.width)
        , height(block.height)
        , isCausal(block.style & BlockStyle::kVerticallyCausal)
        , pitch(std::size_t(block.width) + 2)
        , flags(storage.data() + pitch + 1)
        , cells(coefficients)
        , significanceTable(tables().significance[block.orientation].data())
        , signTable(tables().sign.data())
    {
        resetContexts();
    }

    /// Table D.7.
    void resetContexts()
    {
        contexts.fill(0);
        contexts[0] = 4 * 2;
        contexts[kRunContext] = 3 * 2;
        contexts[kUniformContext] = 46 * 2;
    }

    XRV_INLINE static unsigned neighbourhood(std::uint32_t word, int row) { return word >> (3 * row) & kNeighbours; }

    XRV_INLINE unsigned signIndex(const std::uint32_t *word, int row) const
    {
        const std::uint32_t f = *word;
        const std::uint32_t around = f >> (3 * row);
        const std::uint32_t north = row == 0 ? f >> 30 & 1 : f >> (kNegativeShift + row - 1) & 1;
        const std::uint32_t south = row == 3 ? f >> 31 : f >> (kNegativeShift + row + 1) & 1;
        return (around >> 3 & 1) | (around >> 5 & 1) << 1 | (around >> 1 & 1) << 2 | (around >> 7 & 1) << 3 |
               (word[-1] >> (kNegativeShift + row) & 1) << 4 | (word[1] >> (kNegativeShift + row) & 1) << 5 |
               north << 6 | south << 7;
    }

    /// Tells the neighbours that a cell has become significant.
    XRV_INLINE void spread(std::uint32_t *word, int row, std::uint32_t negative) const
    {
        word[-1] |= 1u << (3 * row + 5);
        word[0] |= kSelf << (3 * row) | negative << (kNegativeShift + row);
        word[1] |= 1u << (3 * row + 3);
        if (row == 0 && !isCausal) {
            std::uint32_t *above = word - pitch;
            above[-1] |= 1u << 17;
            above[0] |= 1u << 16 | negative << 31;
            above[1] |= 1u << 15;
        }
        if (row == 3) {
            std::uint32_t *below = word + pitch;
            below[-1] |= 1u << 2;
            below[0] |= 1u << 1 | negative << 30;
            below[1] |= 1u;
        }
    }

    template <typename Mq> XRV_INLINE unsigned decodeSign(Mq &mq, const std::uint32_t *word, int row)
    {
        const SignEntry entry = signTable[signIndex(word, row)];
        return mq.decode(contexts[entry.context]) ^ entry.flip;
    }

    /// D.3.1. \a value: one and a half of the bit-plane's weight, doubled.
    void significancePropagation(MqDecoder &decoder, std::int32_t value)
    {
        MqDecoder mq = decoder;
        for (int y = 0; y < height; y += 4) {
            const int rows = std::min(4, height - y);
            std::uint32_t *word = flags + std::size_t(y / 4) * pitch;
            std::int32_t *cell = cells + std::size_t(y) * width;
            for (int x = 0; x < width; ++x, ++word, ++cell) {
                if (!(*word & kAllSignificance))
                    continue;
                for (int row = 0; row < rows; ++row) {
                    const std::uint32_t around = *word >> (3 * row);
                    if ((around & kSelf) || !(around & kNeighbours))
                        continue;
                    if (mq.decode(contexts[significanceTable[around & kNeighbours]])) {
                        const unsigned negative = decodeSign(mq, word, row);
                        cell[std::size_t(row) * width] = negative ? -value : value;
                        spread(word, row, negative);
                    }
                    *word |= 1u << (kVisitedShift + row);
                }
            }
        }
        decoder = mq;
    }

    void rawSignificancePropagation(RawBits &bits, std::int32_t value)
    {
        for (int y = 0; y < height; y += 4) {
            const int rows = std::min(4, height - y);
            std::uint32_t *word = flags + std::size_t(y / 4) * pitch;
            std::int32_t *cell = cells + std::size_t(y) * width;
            for (int x = 0; x < width; ++x, ++word, ++cell) {
                for (int row = 0; row < rows; ++row) {
                    const std::uint32_t around = *word >> (3 * row);
                    if ((around & kSelf) || !(around & kNeighbours))
                        continue;
                    if (bits.bit()) {
                        const unsigned negative = bits.bit();
                        cell[std::size_t(row) * width] = negative ? -value : value;
                        spread(word, row, negative);
                    }
                    *word |= 1u << (kVisitedShift + row);
                }
            }
        }
    }

    /// A cell's magnitude moves to the middle of the half that the bit says.
    XRV_INLINE static void refine(std::int32_t &cell, unsigned bit, std::int32_t half)
    {
        cell += (bit ^ (cell < 0 ? 1u : 0u)) ? half : -half;
    }

    /// D.3.3. \a half: half of the bit-plane's weight, doubled.
    void magnitudeRefinement(MqDecoder &decoder, std::int32_t half)
    {
        MqDecoder mq = decoder;
        for (int y = 0; y < height; y += 4) {
            const int rows = std::min(4, height - y);
            std::uint32_t *word = flags + std::size_t(y / 4) * pitch;
            std::int32_t *cell = cells + std::size_t(y) * width;
            for (int x = 0; x < width; ++x, ++word, ++cell) {
                std::uint32_t f = *word;
                if (!(f & (kSelf | kSelf << 3 | kSelf << 6 | kSelf << 9)))
                    continue;
                for (int row = 0; row < rows; ++row) {
                    if (!(f >> (3 * row) & kSelf) || (f >> (kVisitedShift + row) & 1))
                        continue;
                    const int context = f >> (kRefinedShift + row) & 1 ? kRefineContext + 2
                                        : neighbourhood(f, row)        ? kRefineContext + 1
                                                                       : kRefineContext;
                    refine(cell[std::size_t(row) * width], mq.decode(contexts[context]), half);
                    f |= 1u << (kRefinedShift + row);
                }
                *word = f;
            }
        }
        decoder = mq;
    }

    void rawMagnitudeRefinement(RawBits &bits, std::int32_t half)
    {
        for (int y = 0; y < height; y += 4) {
            const int rows = std::min(4, height - y);
            std::uint32_t *word = flags + std::size_t(y / 4) * pitch;
            std::int32_t *cell = cells + std::size_t(y) * width;
            for (int x = 0; x < width; ++x, ++word, ++cell) {
                for (int row = 0; row < rows; ++row) {
                    if (!(*word >> (3 * row) & kSelf) || (*word >> (kVisitedShift + row) & 1))
                        continue;
                    refine(cell[std::size_t(row) * width], bits.bit(), half);
                    *word |= 1u << (kRefinedShift + row);
                }
            }
        }
    }

    /// D.3.4.
    void cleanup(MqDecoder &decoder, std::int32_t value)
    {
        MqDecoder mq = decoder;
        for (int y = 0; y < height; y += 4) {
            const int rows = std::min(4, height - y);
            std::uint32_t *word = flags + std::size_t(y / 4) * pitch;
            std::int32_t *cell = cells + std::size_t(y) * width;
            for (int x = 0; x < width; ++x, ++word, ++cell) {
                int row = 0;
                bool isKnownSignificant = false;
                if (rows == 4 && !(*word & (kAllSignificance | kAllVisited))) {
                    if (!mq.decode(contexts[kRunContext]))
                        continue;
                    row = static_cast<int>(mq.decode(contexts[kUniformContext])) << 1;
                    row |= static_cast<int>(mq.decode(contexts[kUniformContext]));
                    isKnownSignificant = true;
                }
                for (; row < rows; ++row) {
                    const std::uint32_t around = *word >> (3 * row);
                    if (!isKnownSignificant) {
                        if ((around & kSelf) || (*word >> (kVisitedShift + row) & 1))
                            continue;
                        if (!mq.decode(contexts[significanceTable[around & kNeighbours]]))
                            continue;
                    }
                    isKnownSignificant = false;
                    const unsigned negative = decodeSign(mq, word, row);
                    cell[std::size_t(row) * width] = negative ? -value : value;
                    spread(word, row, negative);
                }
                *word &= ~kAllVisited;
            }
        }
        decoder = mq;
    }

    /// Four symbols that stand after a cleanup pass (D.5); they protect, and are passed over.
    void segmentationSymbol(MqDecoder &mq)
    {
        for (int i = 0; i < 4; ++i)
            mq.decode(contexts[kUniformContext]);
    }
};

bool BlockDecoder::decode(const CodeBlock &block, std::int32_t *coefficients)
{
    std::memset(coefficients, 0, sizeof(std::int32_t) * std::size_t(block.width) * block.height);
    if (block.bitPlanes > 30)
        return false;
    const std::size_t stripes = std::size_t(block.height + 3) / 4;
    flags.assign((stripes + 2) * (std::size_t(block.width) + 2), 0);
    Passes passes(block, flags, coefficients);
    int plane = block.bitPlanes - 1, kind = 2, number = 0;
    for (const CodewordSegment &segment : block.segments) {
        // Two bytes of 0xFF end what the arithmetic decoder reads.
        segmentBytes.assign(block.data.begin() + segment.offset, block.data.begin() + segment.offset + segment.length);
        segmentBytes.insert(segmentBytes.end(), {0xFF, 0xFF, 0xFF});
        // D.6: with bypass, significance and refinement passes are raw from the fifth bit-plane on.
        const bool isRaw = (block.style & BlockStyle::kBypass) && number >= 10 && kind != 2;
        MqDecoder mq;
        RawBits bits;
        if (isRaw)
            bits = RawBits(segmentBytes.data(), segment.length);
        else
            mq.start(segmentBytes.data());
        for (int pass = 0; pass < segment.passes && plane >= 0; ++pass, ++number) {
            const std::int32_t weight = std::int32_t(1) << (plane + 1), half = weight >> 1;
            if (kind == 0)
                isRaw ? passes.rawSignificancePropagation(bits, weight | half)
                      : passes.significancePropagation(mq, weight | half);
            else if (kind == 1)
                isRaw ? passes.rawMagnitudeRefinement(bits, half) : passes.magnitudeRefinement(mq, half);
            else
                passes.cleanup(mq, weight | half);
            if (kind == 2 && (block.style & BlockStyle::kSegmentationSymbols))
                passes.segmentationSymbol(mq);
            if (block.style & BlockStyle::kReset)
                passes.resetContexts();
            if (++kind == 3) {
                kind = 0;
                --plane;
            }
        }
    }
    return true;
}

} // namespace xrv
