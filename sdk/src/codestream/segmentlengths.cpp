#include "segmentlengths.h"

#include <algorithm>

namespace xrv {

namespace {

/// More than the 3 * 74 - 2 that guard bits, exponents and a region of interest allow.
constexpr int kMaxPasses = 255;
/// Lengths of high-throughput code-blocks among others are coded with at least a bit more than they need.
constexpr int kLeastLengthBits = 3;

int floorLog2(int value)
{
    int result = 0;
    while (value >>= 1)
        ++result;
    return result;
}

/// Passes that the codeword segment with its first pass numbered \a firstPass can hold.
int passesInSegment(std::uint8_t style, BlockCoding coding, int firstPass)
{
    // A cleanup pass stands alone, the two refinement passes after it together.
    if (coding == BlockCoding::HighThroughput)
        return firstPass % kPassesOfSet == 0 ? 1 : kPassesOfSet - firstPass % kPassesOfSet;
    if (style & CodeBlockStyle::kTerminateAll)
        return 1;
    if (!(style & CodeBlockStyle::kBypass))
        return kMaxPasses;
    // Table D.9: arithmetic coding for the first ten passes (the top bit-plane has a cleanup pass only), then two raw
    // passes and one arithmetically coded one in turn.
    if (firstPass < 10)
        return 10 - firstPass;
    return (firstPass - 10) % 3 == 0 ? 2 : 1;
}

/// Passes that still belong to the codeword segment which an earlier packet has begun, or else to the next one.
int passesLeftInSegment(std::uint8_t style, const CodeBlockState &codeBlock)
{
    int begun = 0;
    for (auto piece = codeBlock.pieces.rbegin(); piece != codeBlock.pieces.rend() && !piece->endsSegment; ++piece)
        begun += piece->passes;
    return passesInSegment(style, codeBlock.coding, codeBlock.passes - begun) - begun;
}

/// What one packet says of one code-block's lengths.
class SegmentLengths
{
public:
    SegmentLengths(PacketBits &bits, std::uint8_t style, CodeBlockState *codeBlock)
        : bits(bits)
        , style(style)
        , codeBlock(codeBlock)
    {
    }

    bool read(int passes)
    {
        if (codeBlock->passes + passes > kMaxPasses)
            return false;
        if (codeBlock->coding == BlockCoding::Unknown)
            return style & CodeBlockStyle::kHighThroughput ? readFirst(passes) : readAsArithmetic(passes);
        return readPieces(passes);
    }

private:
    /// B.10.7: one length for each codeword segment that the packet adds to, in Lblock bits and as many more as the
    /// passes are worth (B.10.7.1). The passes may go on in a segment that an earlier packet has begun.
    bool readPieces(int passes)
    {
        while (passes > 0) {
            const int inSegment = passesLeftInSegment(style, *codeBlock), count = std::min(passes, inSegment);
            std::uint32_t length = 0;
            if (!readLength(count, &length))
                return false;
            append(count, length, count == inSegment);
            passes -= count;
        }
        return true;
    }

    bool readLength(int passes, std::uint32_t *length)
    {
        const int count = codeBlock->lengthBits + floorLog2(passes);
        if (count > 32)
            return false;
        *length = bits.bits(count);
        return true;
    }

    void append(int passes, std::uint32_t length, bool endsSegment)
    {
        CodeBlockPiece piece;
        piece.passes = static_cast<std::uint8_t>(passes);
        piece.length = length;
        piece.endsSegment = endsSegment;
        codeBlock->pieces.push_back(piece);
        codeBlock->passes = static_cast<std::uint8_t>(codeBlock->passes + passes);
    }

    /// Before the first bytes. Whole sets of passes without bytes may come first, in this packet and in earlier ones;
    /// each stands for a bit-plane. The length of the first cleanup pass is as wide as these and itself are worth.
    /// Where it is 0, there are only placeholders so far, and the length is as wide as all passes of the packet are
    /// worth.
    bool readFirst(int passes)
    {
        const PacketBits start = bits;
        const int refinements = (codeBlock->passes + passes - 1) % kPassesOfSet; // after the last cleanup pass
        std::uint32_t length = 0;
        if (passes > refinements) {
            if (!readLength(passes - refinements, &length))
                return false;
            if (length > 0 && isOfCleanup(length, passes - refinements))
                return beginSets(passes, refinements, length);
            if (length > 0)
                return readOtherwise(start, passes);
        }
        bits = start;
        if (!readLength(passes, &length))
            return false;
        if (length > 0)
            return readOtherwise(start, passes);
        codeBlock->passes = static_cast<std::uint8_t>(codeBlock->passes + passes);
        return true;
    }

    /// Among arithmetically coded ones, a high-throughput code-block is known by a length whose highest bit is 0.
    bool isOfCleanup(std::uint32_t length, int passes) const
    {
        if (!(style & CodeBlockStyle::kMixed))
            return true;
        const int width = codeBlock->lengthBits + floorLog2(passes);
        return codeBlock->lengthBits > kLeastLengthBits && length > 1 && length >> (width - 1) == 0;
    }

    bool beginSets(int passes, int refinements, std::uint32_t length)
    {
        const int placeholders = codeBlock->passes + passes - refinements - 1;
        codeBlock->coding = BlockCoding::HighThroughput;
        codeBlock->zeroBitPlanes = static_cast<std::uint8_t>(codeBlock->zeroBitPlanes + placeholders / kPassesOfSet);
        codeBlock->passes = 0;
        append(1, length, true);
        return readPieces(refinements);
    }

    /// From the beginning of the lengths: those of an arithmetically coded block.
    bool readOtherwise(const PacketBits &start, int passes)
    {
        if (!(style & CodeBlockStyle::kMixed))
            return false;
        bits = start;
        return readAsArithmetic(passes);
    }

    /// Passes of earlier packets without bytes were passes of this block after all.
    bool readAsArithmetic(int passes)
    {
        codeBlock->coding = BlockCoding::Arithmetic;
        int earlier = codeBlock->passes;
        codeBlock->passes = 0;
        while (earlier > 0) {
            const int inSegment = passesLeftInSegment(style, *codeBlock), count = std::min(earlier, inSegment);
            append(count, 0, count == inSegment);
            earlier -= count;
        }
        return readPieces(passes);
    }

    PacketBits &bits;
    const std::uint8_t style;
    CodeBlockState *const codeBlock;
};

} // namespace

bool readSegmentLengths(PacketBits &bits, std::uint8_t style, int passes, CodeBlockState *codeBlock)
{
    return SegmentLengths(bits, style, codeBlock).read(passes);
}

} // namespace xrv
