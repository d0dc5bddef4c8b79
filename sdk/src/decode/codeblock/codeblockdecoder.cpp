#include "codeblockdecoder.h"

#include "mqdecoder.h"

#include "codestream/precinct.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

namespace xrv {

namespace {

// One word of flags stands for a column of four cells in a stripe (D.1). For row k of the four, bits 3k to 3k + 8 tell
// which cells of the 3 x 3 around it are significant, west to east and north to south; thus bit 3 (k + 1) + 1 is the
// cell itself.
constexpr std::uint32_t kSelf = 1u << 4;
constexpr std::uint32_t kAllSelf = kSelf | kSelf << 3 | kSelf << 6 | kSelf << 9;
constexpr std::uint32_t kNeighbours = 0x1EF;
constexpr std::uint32_t kAllSignificance = (1u << 18) - 1;
constexpr int kVisitedShift = 18;  ///< coded in this bit-plane's significance propagation pass, rows 0 to 3
constexpr int kRefinedShift = 22;  ///< refined before, rows 0 to 3
constexpr int kNegativeShift = 26; ///< sign, rows 0 to 3
// bit 30: sign of the cell above row 0, bit 31: of the one below row 3
constexpr std::uint32_t kAllVisited = 15u << kVisitedShift;

// Context numbers (table D.1 to D.5): 0-8 significance, 9-13 sign, 14-16 refinement, 17 run length, 18 uniform.
constexpr int kRefineContext = 14, kRunContext = 17, kUniformContext = 18, kContexts = 19;

/// Significance context of a neighbourhood in a subband (table D.1): 0 when no neighbour is significant. Also 0 for a
/// cell that is significant itself, so that the significance propagation pass has one question to ask.
std::uint8_t significanceContext(unsigned neighbourhood, int orientation)
{
    if (neighbourhood & kSelf)
        return 0;
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
    std::array<std::array<std::uint8_t, 512>, 4> significance{};
    std::array<SignEntry, 256> sign{};
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
template <typename Cell> struct CodeBlockDecoder::Passes
{
    const int width, height;
    const bool isCausal; ///< vertically causal contexts: a stripe does not look at the next one (D.7)
    const std::size_t pitch;
    std::uint32_t *const flags; ///< first column of the first stripe; a border all around
    Cell *const cells;
    const std::uint8_t *const significanceTable;
    const SignEntry *const signTable;
    std::array<MqDecoder::Context, kContexts> contexts{};

    Passes(const CodeBlock &block, std::vector<std::uint32_t> &storage, Cell *coefficients)
        : width(block.width)
        , height(block.height)
        , isCausal(block.style & CodeBlockStyle::kVerticallyCausal)
        , pitch(std::size_t(block.width) + 2)
        , flags(storage.data() + pitch + 1)
        , cells(coefficients)
        , significanceTable(tables().significance[block.orientation].data())
        , signTable(tables().sign.data())
    {
        resetContexts();
    }

    /// Table D.7. Contexts start in states of their own: the one of cells without significant neighbours, run length
    /// and uniform; all others in state 0.
    void resetContexts()
    {
        contexts.fill(mqStateOfRow(0));
        contexts[0] = mqStateOfRow(4);
        contexts[kRunContext] = mqStateOfRow(3);
        contexts[kUniformContext] = mqStateOfRow(46);
    }

    // Rows are template parameters, so that every shift is by a constant.

    // The word of the column in hand is kept in a register (f) and stored when the column is done.

    template <int kRow> XRV_INLINE static unsigned signIndex(std::uint32_t f, const std::uint32_t *word)
    {
        const std::uint32_t around = f >> (3 * kRow);
        const std::uint32_t north = kRow == 0 ? f >> 30 & 1 : f >> (kNegativeShift + kRow - 1) & 1;
        const std::uint32_t south = kRow == 3 ? f >> 31 : f >> (kNegativeShift + kRow + 1) & 1;
        return (around >> 3 & 1) | (around >> 4 & 2) | (around << 1 & 4) | (around >> 4 & 8) |
               (word[-1] >> (kNegativeShift + kRow) & 1) << 4 | (word[1] >> (kNegativeShift + kRow) & 1) << 5 |
               north << 6 | south << 7;
    }

    /// Tells the neighbours that a cell has become significant. With causal contexts (D.7) the stripe above is not
    /// told, so it never sees what lies below it.
    template <int kRow> XRV_INLINE void spread(std::uint32_t &f, std::uint32_t *word, std::uint32_t negative) const
    {
        word[-1] |= 1u << (3 * kRow + 5);
        f |= kSelf << (3 * kRow) | negative << (kNegativeShift + kRow);
        word[1] |= 1u << (3 * kRow + 3);
        if (kRow == 0 && !isCausal) {
            std::uint32_t *above = word - pitch;
            above[-1] |= 1u << 17;
            above[0] |= 1u << 16 | negative << 31;
            above[1] |= 1u << 15;
        }
        if (kRow == 3) {
            std::uint32_t *below = word + pitch;
            below[-1] |= 1u << 2;
            below[0] |= 1u << 1 | negative << 30;
            below[1] |= 1u;
        }
    }

    template <int kRow>
    XRV_INLINE void becomeSignificant(MqDecoder &mq, std::uint32_t &f, std::uint32_t *word, Cell *cell, Cell value)
    {
        const SignEntry entry = signTable[signIndex<kRow>(f, word)];
        const unsigned negative = mq.decode(contexts[entry.context]) ^ entry.flip;
        cell[std::ptrdiff_t(kRow) * width] = negative ? -value : value;
        spread<kRow>(f, word, negative);
    }

    /// Calls pass.cell<row>(f, word, cell) for all cells in coding order (D.1), but for columns that pass.skips().
    template <typename Pass> XRV_INLINE void forAll(Pass &pass)
    {
        const int fullRows = height & ~3;
        std::uint32_t *word = flags;
        Cell *cell = cells;
        for (int y = 0; y < fullRows; y += 4, word += pitch - width, cell += 3 * std::ptrdiff_t(width)) {
            for (const Cell *const end = cell + width; cell != end; ++word, ++cell) {
                std::uint32_t f = *word;
                if (Pass::skips(f))
                    continue;
                pass.template visit<0>(f, word, cell);
                pass.template visit<1>(f, word, cell);
                pass.template visit<2>(f, word, cell);
                pass.template visit<3>(f, word, cell);
                *word = f;
            }
        }
        const int rows = height - fullRows;
        if (rows == 0)
            return;
        for (const Cell *const end = cell + width; cell != end; ++word, ++cell) {
            std::uint32_t f = *word;
            pass.template visit<0>(f, word, cell);
            if (rows > 1)
                pass.template visit<1>(f, word, cell);
            if (rows > 2)
                pass.template visit<2>(f, word, cell);
            *word = f;
        }
    }

    /// D.3.1: cells that are not significant but have significant neighbours. They count as visited whatever came out,
    /// so that the cleanup pass leaves them alone.
    struct SignificancePropagation // NOLINT(cppcoreguidelines-pro-type-member-init): an aggregate
    {
        Passes &passes;
        MqDecoder mq;
        const Cell value;
        const std::uint8_t *const table;

        XRV_INLINE static bool skips(std::uint32_t f) { return (f & kAllSignificance) == 0; }
        template <int kRow> XRV_INLINE void visit(std::uint32_t &f, std::uint32_t *word, Cell *cell)
        {
            const unsigned context = table[f >> (3 * kRow) & (kNeighbours | kSelf)];
            if (context == 0)
                return;
            if (mq.decode(passes.contexts[context]))
                passes.becomeSignificant<kRow>(mq, f, word, cell, value);
            f |= 1u << (kVisitedShift + kRow);
        }
    };

    /// \a value: one and a half of the bit-plane's weight, doubled.
    void significancePropagation(MqDecoder &decoder, Cell value)
    {
        SignificancePropagation pass{*this, decoder, value, significanceTable};
        forAll(pass);
        decoder = pass.mq;
    }

    struct RawSignificancePropagation
    {
        Passes &passes;
        RawBits &bits;
        const Cell value;

        static bool skips(std::uint32_t f) { return (f & kAllSignificance) == 0; }
        template <int kRow> void visit(std::uint32_t &f, std::uint32_t *word, Cell *cell)
        {
            const std::uint32_t around = f >> (3 * kRow);
            if ((around & kSelf) || !(around & kNeighbours))
                return;
            if (bits.bit()) {
                const unsigned negative = bits.bit();
                cell[std::ptrdiff_t(kRow) * passes.width] = negative ? -value : value;
                passes.spread<kRow>(f, word, negative);
            }
            f |= 1u << (kVisitedShift + kRow);
        }
    };

    void rawSignificancePropagation(RawBits &bits, Cell value)
    {
        RawSignificancePropagation pass{*this, bits, value};
        forAll(pass);
    }

    /// A cell's magnitude moves to the middle of the half that the bit says: towards 0 for a 0.
    XRV_INLINE static void refine(Cell &cell, unsigned bit, Cell half)
    {
        const auto isNegative =
            static_cast<unsigned>(static_cast<std::make_unsigned_t<Cell>>(cell) >> (8 * sizeof(Cell) - 1));
        const Cell minusMask = -static_cast<Cell>(bit ^ 1u ^ isNegative);
        cell += (half ^ minusMask) - minusMask;
    }

    /// Significant and not coded in the significance propagation pass of this bit-plane.
    template <int kRow> XRV_INLINE static bool isToRefine(std::uint32_t f)
    {
        constexpr std::uint32_t kSignificant = kSelf << (3 * kRow), kVisited = 1u << (kVisitedShift + kRow);
        return (f & (kSignificant | kVisited)) == kSignificant;
    }

    /// D.3.3. Context by table D.4: a cell's first refinement looks at its neighbours, later ones do not.
    struct MagnitudeRefinement // NOLINT(cppcoreguidelines-pro-type-member-init): an aggregate
    {
        Passes &passes;
        MqDecoder mq;
        const Cell half;

        XRV_INLINE static bool skips(std::uint32_t f) { return (f & kAllSelf) == 0; }
        template <int kRow> XRV_INLINE void visit(std::uint32_t &f, std::uint32_t *, Cell *cell)
        {
            if (!isToRefine<kRow>(f))
                return;
            const int first = (f >> (3 * kRow) & kNeighbours) != 0 ? kRefineContext + 1 : kRefineContext;
            const int context = f >> (kRefinedShift + kRow) & 1 ? kRefineContext + 2 : first;
            refine(cell[std::ptrdiff_t(kRow) * passes.width], mq.decode(passes.contexts[context]), half);
            f |= 1u << (kRefinedShift + kRow);
        }
    };

    /// \a half: half of the bit-plane's weight, doubled.
    void magnitudeRefinement(MqDecoder &decoder, Cell half)
    {
        MagnitudeRefinement pass{*this, decoder, half};
        forAll(pass);
        decoder = pass.mq;
    }

    struct RawMagnitudeRefinement
    {
        Passes &passes;
        RawBits &bits;
        const Cell half = 0;

        static bool skips(std::uint32_t f) { return (f & kAllSelf) == 0; }
        template <int kRow> void visit(std::uint32_t &f, std::uint32_t *, Cell *cell)
        {
            if (!isToRefine<kRow>(f))
                return;
            refine(cell[std::ptrdiff_t(kRow) * passes.width], bits.bit(), half);
            f |= 1u << (kRefinedShift + kRow);
        }
    };

    void rawMagnitudeRefinement(RawBits &bits, Cell half)
    {
        RawMagnitudeRefinement pass{*this, bits, half};
        forAll(pass);
    }

    /// D.3.4: all that the other two passes have left. It ends the bit-plane and takes the visits back. Runs of four
    /// are coded only in whole stripes, so the rows of the last one, if they are fewer, go one by one.
    void cleanup(MqDecoder &decoder, Cell value)
    {
        MqDecoder mq = decoder;
        const int fullRows = height & ~3;
        std::uint32_t *word = flags;
        Cell *cell = cells;
        for (int y = 0; y < fullRows; y += 4, word += pitch - width, cell += 3 * std::ptrdiff_t(width))
            for (const Cell *const end = cell + width; cell != end; ++word, ++cell)
                cleanupColumn(mq, word, cell, value);
        if (const int rows = height - fullRows)
            for (const Cell *const end = cell + width; cell != end; ++word, ++cell) {
                std::uint32_t f = *word;
                cleanupCell<0>(mq, f, word, cell, value);
                if (rows > 1)
                    cleanupCell<1>(mq, f, word, cell, value);
                if (rows > 2)
                    cleanupCell<2>(mq, f, word, cell, value);
                *word = f & ~kAllVisited;
            }
        decoder = mq;
    }

    template <int kRow>
    XRV_INLINE void cleanupCell(MqDecoder &mq, std::uint32_t &f, std::uint32_t *word, Cell *cell, Cell value)
    {
        if (f & (kSelf << (3 * kRow) | 1u << (kVisitedShift + kRow)))
            return;
        if (mq.decode(contexts[significanceTable[f >> (3 * kRow) & kNeighbours]]))
            becomeSignificant<kRow>(mq, f, word, cell, value);
    }

    XRV_INLINE void cleanupColumn(MqDecoder &mq, std::uint32_t *word, Cell *cell, Cell value)
    {
        std::uint32_t f = *word;
        unsigned firstRow = 0;
        if (!(f & (kAllSignificance | kAllVisited))) {
            // Nothing around: a run of four at once, with the place of the first significant one.
            if (!mq.decode(contexts[kRunContext]))
                return;
            firstRow = mq.decode(contexts[kUniformContext]) << 1;
            firstRow |= mq.decode(contexts[kUniformContext]);
            switch (firstRow) {
            case 0:
                becomeSignificant<0>(mq, f, word, cell, value);
                break;
            case 1:
                becomeSignificant<1>(mq, f, word, cell, value);
                break;
            case 2:
                becomeSignificant<2>(mq, f, word, cell, value);
                break;
            default:
                becomeSignificant<3>(mq, f, word, cell, value);
                break;
            }
            ++firstRow;
        }
        if (firstRow < 1)
            cleanupCell<0>(mq, f, word, cell, value);
        if (firstRow < 2)
            cleanupCell<1>(mq, f, word, cell, value);
        if (firstRow < 3)
            cleanupCell<2>(mq, f, word, cell, value);
        if (firstRow < 4)
            cleanupCell<3>(mq, f, word, cell, value);
        *word = f & ~kAllVisited;
    }

    /// Four symbols that stand after a cleanup pass (D.5); they protect, and are passed over.
    void segmentationSymbol(MqDecoder &mq)
    {
        for (int i = 0; i < 4; ++i)
            mq.decode(contexts[kUniformContext]);
    }
};

template <typename Cell> bool CodeBlockDecoder::decode(const CodeBlock &block, Cell *coefficients)
{
    std::memset(coefficients, 0, sizeof(Cell) * std::size_t(block.width) * block.height);
    if (block.bitPlanes > kMaxBitPlanes<Cell>)
        return false;
    const std::size_t stripes = std::size_t(block.height + 3) / 4;
    flags.assign((stripes + 2) * (std::size_t(block.width) + 2), 0);
    Passes<Cell> passes(block, flags, coefficients);
    // The top bit-plane has a cleanup pass only (D.3), as nothing is significant before it.
    int plane = block.bitPlanes - 1, kind = 2, number = 0;
    for (const CodewordSegment &segment : block.segments) {
        // Two bytes of 0xFF end what the arithmetic decoder reads.
        segmentBytes.assign(block.data.begin() + segment.offset, block.data.begin() + segment.offset + segment.length);
        segmentBytes.insert(segmentBytes.end(), {0xFF, 0xFF, 0xFF});
        // D.6: with bypass, significance and refinement passes are raw from the fifth bit-plane on.
        const bool isRaw = (block.style & CodeBlockStyle::kBypass) && number >= 10 && kind != 2;
        MqDecoder mq;
        RawBits bits;
        if (isRaw)
            bits = RawBits(segmentBytes.data(), segment.length);
        else
            mq.start(segmentBytes.data());
        for (int pass = 0; pass < segment.passes && plane >= 0; ++pass, ++number) {
            const Cell weight = Cell(1) << (plane + 1), half = weight >> 1;
            if (kind == 0)
                isRaw ? passes.rawSignificancePropagation(bits, weight | half)
                      : passes.significancePropagation(mq, weight | half);
            else if (kind == 1)
                isRaw ? passes.rawMagnitudeRefinement(bits, half) : passes.magnitudeRefinement(mq, half);
            else
                passes.cleanup(mq, weight | half);
            if (kind == 2 && (block.style & CodeBlockStyle::kSegmentationSymbols))
                passes.segmentationSymbol(mq);
            if (block.style & CodeBlockStyle::kReset)
                passes.resetContexts();
            if (++kind == 3) {
                kind = 0;
                --plane;
            }
        }
    }
    return true;
}

template bool CodeBlockDecoder::decode(const CodeBlock &, std::int32_t *);
template bool CodeBlockDecoder::decode(const CodeBlock &, std::int64_t *);

} // namespace xrv
