#include "htcodeblockdecoder.h"

#include "htbits.h"
#include "htcodewords.h"

#include "codestream/segmentlengths.h"

#include <algorithm>
#include <array>
#include <type_traits>

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace xrv {

namespace {

constexpr std::size_t kMaxSuffix = 4079; ///< bytes of the run-length code and the codewords together
constexpr int kStripe = 4;               ///< rows, and columns that the refinement passes go through at a time

/// Bits of a cell's mark.
constexpr std::uint8_t kSignificant = 1, kNewlySignificant = 2;

/// Bits that \a value has from its highest one down; \a value is not 0.
inline unsigned bitWidth(std::uint64_t value)
{
#if defined(__GNUC__)
    return 64 - static_cast<unsigned>(__builtin_clzll(value));
#elif defined(_MSC_VER)
    unsigned long highest = 0;
    _BitScanReverse64(&highest, value);
    return highest + 1;
#else
    unsigned width = 0;
    for (; value; value >>= 1)
        ++width;
    return width;
#endif
}

/// How much the exponent of a quad is larger than predicted: 1 as "1", 2 as "01", 3 and 4 as "001" and a bit, more as
/// "000" and five bits, the largest of these (28 to 31) lengthened by four more bits for four times what they say. Of
/// two quads side by side both prefixes come first, then both suffixes, then what lengthens them.
struct OffsetCode
{
    std::uint8_t length, suffixLength, value;
};
OffsetCode readPrefix(BackwardBits &bits)
{
    static constexpr OffsetCode kCodes[8] = {{3, 5, 5}, {1, 0, 1}, {2, 0, 2}, {1, 0, 1},
                                             {3, 1, 3}, {1, 0, 1}, {2, 0, 2}, {1, 0, 1}};
    const OffsetCode &code = kCodes[bits.peek() & 7];
    bits.skip(code.length);
    return code;
}
std::uint8_t readSuffix(BackwardBits &bits, const OffsetCode &code)
{
    const std::uint32_t suffix = bits.peek() & ((1u << code.suffixLength) - 1);
    bits.skip(code.suffixLength);
    return static_cast<std::uint8_t>(code.value + suffix);
}
std::uint8_t lengthened(BackwardBits &bits, std::uint8_t offset)
{
    constexpr std::uint8_t kFirstLengthened = 5 + 28;
    if (offset < kFirstLengthened)
        return offset;
    const std::uint32_t more = bits.peek() & 15;
    bits.skip(4);
    return static_cast<std::uint8_t>(offset + 4 * more);
}

/// The offsets of two quads side by side of which both have one.
std::array<std::uint8_t, 2> readTwoOffsets(BackwardBits &bits, MelEvents *events)
{
    // Only in the first row an event tells that both are more than 2, which is taken off them then. Where they are not
    // and the first one is, the second must be 1 or 2, and one bit says which.
    const bool areLarge = events && events->event();
    const OffsetCode first = readPrefix(bits);
    if (events && !areLarge && first.length > 2) {
        const auto second = static_cast<std::uint8_t>(bits.bit() + 1);
        return {lengthened(bits, readSuffix(bits, first)), second};
    }
    const OffsetCode second = readPrefix(bits);
    const std::uint8_t more = areLarge ? 2 : 0;
    std::array<std::uint8_t, 2> offsets{readSuffix(bits, first), readSuffix(bits, second)};
    for (std::uint8_t &offset : offsets)
        offset = static_cast<std::uint8_t>(lengthened(bits, offset) + more);
    return offsets;
}

} // namespace

/// Passes that belong together: where their bytes are, and how many there are.
struct HtCodeBlockDecoder::Set
{
    CodewordSegment cleanup, refinement;
    int number = 0;
};

/// The last set whose cleanup pass has bytes; those after it hold nothing that is new.
HtCodeBlockDecoder::Set HtCodeBlockDecoder::lastSet(const CodeBlock &block)
{
    Set last;
    int passes = 0;
    bool isEmpty = true;
    for (const CodewordSegment &segment : block.segments) {
        if (passes % kPassesOfSet == 0) {
            isEmpty = segment.length == 0;
            if (!isEmpty)
                last = {segment, {}, passes / kPassesOfSet};
        } else if (!isEmpty) {
            last.refinement = segment;
        }
        passes += segment.passes;
    }
    return last;
}

template <typename Cell> bool HtCodeBlockDecoder::decode(const CodeBlock &block, Cell *coefficients)
{
    width = block.width;
    height = block.height;
    const auto clear = [&] { std::fill_n(coefficients, std::size_t(width) * height, Cell(0)); };
    clear();
    const Set last = lastSet(block);
    if (last.cleanup.length == 0)
        return true; // nothing is coded
    bitPlane = block.bitPlanes - last.number;
    if (block.bitPlanes > kMaxBitPlanes<Cell> || bitPlane < 1)
        return false;
    if (!decodeCleanup(block.data.data() + last.cleanup.offset, last.cleanup.length, coefficients)) {
        clear();
        return false;
    }
    if (last.refinement.passes == 0 || bitPlane < 2)
        return true;
    // Both passes read the same bytes, one from the back and one from the front, so they can go in either order. The
    // refinement comes first, while the cells that are not 0 are those of the cleanup pass and no others.
    const std::uint8_t *begin = block.data.data() + last.refinement.offset, *end = begin + last.refinement.length;
    markSignificance(coefficients);
    if (last.refinement.passes > 1)
        refineMagnitudes(BackwardBits(begin, end), coefficients);
    propagateSignificance(ForwardBits(begin, end, 0), block.style & CodeBlockStyle::kVerticallyCausal, coefficients);
    return true;
}

/// Clause 7.1: the bytes hold magnitudes and signs, then the run-length code from the front and the codewords from the
/// back; twelve bits at the end say how long the latter two are.
template <typename Cell>
bool HtCodeBlockDecoder::decodeCleanup(const std::uint8_t *data, std::size_t length, Cell *cells)
{
    if (length < 2)
        return false;
    const std::size_t suffix = std::size_t(data[length - 1]) << 4 | (data[length - 2] & 0x0F);
    if (suffix < 2 || suffix > length || suffix > kMaxSuffix)
        return false;
    readQuads(data, length, suffix);
    return readMagnitudes(data, length - suffix, cells);
}

/// Equations 1 and 2: the context of a quad's codeword comes from the cells around it that are known already.
inline unsigned HtCodeBlockDecoder::context(const Quad *quad, bool isInFirstRow) const
{
    const unsigned left = quad[-1].significance;
    if (isInFirstRow)
        return left >> 1 | (left & 1);
    const Quad *above = quad - quadPitch;
    return ((above[-1].significance >> 3 | above[0].significance >> 1) & 1) | ((left >> 2 | left >> 3) & 1) << 1 |
           ((above[0].significance >> 3 | above[1].significance >> 1) & 1) << 2;
}

/// The offsets of two quads side by side, as far as they have them. \a events: in the first row only.
inline void HtCodeBlockDecoder::readOffsets(BackwardBits &bits, MelEvents *events, bool hasFirst, bool hasSecond,
                                            Quad *quad)
{
    if (hasFirst && hasSecond) {
        const std::array<std::uint8_t, 2> offsets = readTwoOffsets(bits, events);
        quad[0].exponentOffset = offsets[0];
        quad[1].exponentOffset = offsets[1];
    } else if (hasFirst || hasSecond) {
        quad[hasFirst ? 0 : 1].exponentOffset = lengthened(bits, readSuffix(bits, readPrefix(bits)));
    }
}

void HtCodeBlockDecoder::readQuads(const std::uint8_t *data, std::size_t length, std::size_t suffixLength)
{
    const std::uint8_t *begin = data + length - suffixLength, *end = data + length;
    // The run-length code and the codewords grow towards each other and may meet in one byte. The twelve bits of the
    // lengths take up the last byte and the lower half of the one before it.
    MelEvents events(begin, end - 1);
    BackwardBits bits(begin, end - 2, end[-2]);
    quadsAcross = (width + 1) / 2;
    const int quadsDown = (height + 1) / 2;
    quadPitch = static_cast<std::size_t>(quadsAcross) + 2;
    quads.assign(quadPitch * (static_cast<std::size_t>(quadsDown) + 1), {});

    // In context 0 nothing around is significant, and an event tells whether the quad has a codeword at all.
    const auto readCodeword = [&](const HtCodewords &codewords, unsigned context, Quad *quad) {
        if (context == 0 && !events.event())
            return false;
        const HtCodeword &codeword = codewords.find(context, bits.peek());
        bits.skip(codeword.length);
        *quad = {codeword.significance, codeword.knownExponents, codeword.topBits, 0};
        return codeword.hasExponentOffset;
    };

    for (int y = 0; y < quadsDown; ++y) {
        const HtCodewords &codewords = y == 0 ? HtCodewords::firstRow() : HtCodewords::otherRows();
        Quad *quad = quads.data() + quadPitch * (static_cast<std::size_t>(y) + 1) + 1;
        for (int x = 0; x < quadsAcross; x += 2, quad += 2) {
            const bool hasFirst = readCodeword(codewords, context(quad, y == 0), quad);
            const bool hasSecond = x + 1 < quadsAcross && readCodeword(codewords, context(quad + 1, y == 0), quad + 1);
            readOffsets(bits, y == 0 ? &events : nullptr, hasFirst, hasSecond, quad);
        }
    }
}

template <typename Cell>
bool HtCodeBlockDecoder::readMagnitudes(const std::uint8_t *data, std::size_t length, Cell *cells)
{
    ForwardBits bits(data, data + length, 0xFF);
    const std::size_t columns = static_cast<std::size_t>(quadsAcross) * 2 + 3; // one more on the left, two on the right
    exponents.assign(columns, 0);
    exponentsAbove.assign(columns, 0);
    for (int y = 0; y < height; y += 2) {
        const Quad *quad = quads.data() + quadPitch * (static_cast<std::size_t>(y) / 2 + 1) + 1;
        std::swap(exponents, exponentsAbove);
        std::fill(exponents.begin(), exponents.end(), std::uint8_t(0));
        for (int x = 0; x < width; x += 2, ++quad) {
            if (quad->significance == 0)
                continue;
            // Equations 3 to 6: quads with several cells that are not 0 are predicted from the row above.
            unsigned exponent = 1;
            if (quad->significance & (quad->significance - 1)) {
                const std::uint8_t *above = exponentsAbove.data() + x; // from the cell left of the quad on
                const unsigned largest = std::max(std::max(above[0], above[1]), std::max(above[2], above[3]));
                exponent = largest > 2 ? largest - 1 : 1;
            }
            if (!readQuad(*quad, x, y, exponent + quad->exponentOffset, bits, cells))
                return false;
        }
    }
    return true;
}

/// The magnitude bits and signs of a quad whose largest exponent is \a exponent at most.
template <typename Cell>
bool HtCodeBlockDecoder::readQuad(const Quad &quad, int x, int y, unsigned exponent, ForwardBits &bits, Cell *cells)
{
    using Value = std::make_unsigned_t<Cell>;
    constexpr unsigned kBits = 8 * sizeof(Cell);
    const bool reachesOut =
        (x + 1 == width && (quad.significance & 0xC)) || (y + 1 == height && (quad.significance & 0xA));
    if (reachesOut || exponent + static_cast<unsigned>(bitPlane) > kBits)
        return false;
    Cell *upperLeft = cells + std::ptrdiff_t(y) * width + x;
    for (int cell = 0; cell < 4; ++cell) {
        if (!(quad.significance >> cell & 1))
            continue;
        const unsigned count = exponent - (quad.knownExponents >> cell & 1);
        // Twice the magnitude less one, with the sign as the lowest bit; the middle of the interval takes its place.
        auto value = bits.template take<Value>(count);
        const bool isNegative = value & 1;
        value |= Value(quad.topBits >> cell & 1) << count | 1;
        const Value magnitude = (value + 2) << (bitPlane - 1);
        if (magnitude >> (kBits - 1))
            return false;
        const auto positive = static_cast<Cell>(magnitude);
        upperLeft[(cell & 1) * std::ptrdiff_t(width) + (cell >> 1)] = isNegative ? -positive : positive;
        if (cell & 1) // the row below looks at the lower cells only
            exponents[static_cast<std::size_t>(x) + 1 + (cell >> 1)] = static_cast<std::uint8_t>(bitWidth(value));
    }
    return true;
}

template <typename Cell> void HtCodeBlockDecoder::markSignificance(const Cell *cells)
{
    const std::size_t pitch = static_cast<std::size_t>(width) + 2;
    significance.assign(pitch * (static_cast<std::size_t>(height) + 2), 0);
    const Cell *cell = cells;
    for (int y = 0; y < height; ++y) {
        std::uint8_t *mark = significance.data() + pitch * (static_cast<std::size_t>(y) + 1) + 1;
        for (int x = 0; x < width; ++x)
            *mark++ = *cell++ != 0 ? kSignificant : 0;
    }
}

/// Clause 7.5: another bit for every cell that the cleanup pass has found, column by column in stripes of four rows.
template <typename Cell> void HtCodeBlockDecoder::refineMagnitudes(BackwardBits bits, Cell *cells)
{
    const Cell middle = Cell(1) << (bitPlane - 1), half = middle >> 1;
    for (int top = 0; top < height; top += kStripe)
        for (int x = 0; x < width; ++x)
            for (int y = top; y < std::min(top + kStripe, height); ++y) {
                Cell &cell = cells[std::ptrdiff_t(y) * width + x];
                if (cell == 0)
                    continue;
                const Cell change = bits.bit() ? half : half - middle;
                cell += cell < 0 ? -change : change;
            }
}

bool HtCodeBlockDecoder::hasSignificantNeighbour(std::size_t mark, bool isLastRowOfStripe) const
{
    const std::size_t pitch = static_cast<std::size_t>(width) + 2;
    const std::uint8_t *above = significance.data() + mark - pitch, *at = above + pitch, *below = at + pitch;
    const int found = above[-1] | above[0] | above[1] | at[-1] | at[1];
    return found || (!isLastRowOfStripe && (below[-1] | below[0] | below[1]));
}

/// Clause 7.4: cells beside significant ones may become significant in the next bit-plane. Of four columns the
/// decisions come first, then the signs. A cell that has become significant counts as a neighbour at once.
template <typename Cell> void HtCodeBlockDecoder::propagateSignificance(ForwardBits bits, bool isCausal, Cell *cells)
{
    const Cell value = Cell(3) << (bitPlane - 2);
    const std::size_t pitch = static_cast<std::size_t>(width) + 2;
    const auto visit = [&](int left, int top, const auto &visitor) {
        for (int x = left; x < std::min(left + kStripe, width); ++x)
            for (int y = top; y < std::min(top + kStripe, height); ++y)
                visitor(x, y, pitch * (static_cast<std::size_t>(y) + 1) + static_cast<std::size_t>(x) + 1);
    };
    for (int top = 0; top < height; top += kStripe) {
        for (int left = 0; left < width; left += kStripe) {
            visit(left, top, [&](int, int y, std::size_t mark) {
                const bool looksUpOnly = isCausal && y == top + kStripe - 1;
                if (significance[mark] == 0 && hasSignificantNeighbour(mark, looksUpOnly) && bits.bit())
                    significance[mark] = kNewlySignificant;
            });
            visit(left, top, [&](int x, int y, std::size_t mark) {
                if (significance[mark] == kNewlySignificant)
                    cells[std::ptrdiff_t(y) * width + x] = bits.bit() ? -value : value;
            });
        }
    }
}

template bool HtCodeBlockDecoder::decode(const CodeBlock &, std::int32_t *);
template bool HtCodeBlockDecoder::decode(const CodeBlock &, std::int64_t *);

} // namespace xrv
