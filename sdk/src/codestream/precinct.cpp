#include "precinct.h"

#include <algorithm>

namespace xrv {

namespace {

/// Number of passes by their codewords (table B.4).
int readPasses(PacketBits &bits)
{
    if (!bits.bit())
        return 1;
    if (!bits.bit())
        return 2;
    if (unsigned n = bits.bits(2); n < 3)
        return 3 + static_cast<int>(n);
    if (unsigned n = bits.bits(5); n < 31)
        return 6 + static_cast<int>(n);
    return 37 + static_cast<int>(bits.bits(7));
}

int floorLog2(unsigned value)
{
    int result = 0;
    while (value >>= 1)
        ++result;
    return result;
}

constexpr int kMaxPasses = 164;       ///< 37 + 127, table B.4
constexpr int kMaxZeroBitPlanes = 74; ///< more than 7 guard bits and 5-bit exponents with a region of interest allow

} // namespace

int passesInSegment(std::uint8_t style, int firstPass)
{
    if (style & CodeBlockStyle::kHighThroughput)
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

IntRect BandGrid::codeBlockRect(std::uint32_t number) const
{
    const std::int64_t x = firstX + number % across, y = firstY + number / across;
    return IntRect{x << widthExponent, y << heightExponent, (x + 1) << widthExponent, (y + 1) << heightExponent}
        .intersected(bandRect);
}

IntRect bandRect(const IntRect &rect, int orientation, int level)
{
    if (level == 0)
        return rect;
    const std::int64_t half = std::int64_t(1) << (level - 1);
    const std::int64_t dx = orientation & 1 ? half : 0, dy = orientation & 2 ? half : 0;
    return {ceilShift(rect.x0 - dx, level), ceilShift(rect.y0 - dy, level), ceilShift(rect.x1 - dx, level),
            ceilShift(rect.y1 - dy, level)};
}

std::vector<BandGrid> bandGrids(const IntRect &tileComponentRect, const ComponentStyle &style, const PrecinctGrid &grid,
                                int resolution, std::int64_t precinct)
{
    // LL has the cells of the lowest resolution. All other subbands have half of their resolution's to either side, and
    // so have the parts of its precincts and the largest code-blocks that fit there (B.6, B.7).
    const bool isLowest = resolution == 0;
    const int level = isLowest ? style.decompositionLevels : style.decompositionLevels - resolution + 1;
    const int widthExponent = grid.widthExponent - (isLowest ? 0 : 1);
    const int heightExponent = grid.heightExponent - (isLowest ? 0 : 1);
    const std::int64_t px = grid.firstX + precinct % grid.across, py = grid.firstY + precinct / grid.across;
    const IntRect precinctRect{px << widthExponent, py << heightExponent, (px + 1) << widthExponent,
                               (py + 1) << heightExponent};
    std::vector<BandGrid> bands;
    for (int orientation = isLowest ? 0 : 1; orientation <= (isLowest ? 0 : 3); ++orientation) {
        BandGrid band;
        band.orientation = orientation;
        band.bandRect = bandRect(tileComponentRect, orientation, level).intersected(precinctRect);
        band.widthExponent = std::min(style.codeBlockWidthExponent, widthExponent);
        band.heightExponent = std::min(style.codeBlockHeightExponent, heightExponent);
        if (!band.bandRect.isEmpty()) {
            band.firstX = band.bandRect.x0 >> band.widthExponent;
            band.firstY = band.bandRect.y0 >> band.heightExponent;
            band.across = static_cast<std::uint32_t>(ceilShift(band.bandRect.x1, band.widthExponent) - band.firstX);
            band.down = static_cast<std::uint32_t>(ceilShift(band.bandRect.y1, band.heightExponent) - band.firstY);
        }
        // An empty subband stays in the list: the others are found by their number.
        bands.push_back(band);
    }
    return bands;
}

Precinct::Precinct(const IntRect &tileComponentRect, const ComponentStyle &style, const PrecinctGrid &grid,
                   int resolution, std::int64_t precinct, bool usesEph)
    : codeBlockStyle(style.codeBlockStyle)
    , usesEph(usesEph)
{
    for (const BandGrid &band : bandGrids(tileComponentRect, style, grid, resolution, precinct))
        bandStates.emplace_back(band.across, band.down);
}

Precinct::Outcome Precinct::parse(const std::uint8_t *data, std::size_t size, int layer, const CancelFlag &cancel,
                                  std::size_t *headerLength, std::uint64_t *bodyLength)
{
    // A.8.1: the SOP marker segment may be left out packet by packet.
    const std::size_t sop = size >= 6 && data[0] == 0xFF && data[1] == 0x91 ? 6 : 0;
    *bodyLength = 0;
    lastPieces.clear();
    if (size <= sop)
        return Outcome::NeedsMore;
    if (!(data[sop] & 0x80)) {
        // B.10.3: an empty packet, the common case in files of many layers.
        *headerLength = sop + 1;
    } else {
        PacketBits bits(data + sop, size - sop);
        bits.bit();
        bool sound = true;
        for (BandState &band : bandStates)
            sound = sound && parseBand(bits, band, layer, cancel, bodyLength);
        *headerLength = sop + bits.finish();
        if (!bits.ok() || !sound)
            return bits.ok() ? Outcome::Damaged : Outcome::NeedsMore;
    }
    if (usesEph) {
        // A.8.2; writers that promise the marker and leave it out are read all the same.
        if (size < *headerLength + 2)
            return Outcome::NeedsMore;
        if (data[*headerLength] == 0xFF && data[*headerLength + 1] == 0x92)
            *headerLength += 2;
    }
    // B.9: the bytes follow in the order in which the header has spoken of them.
    std::uint64_t offset = *headerLength;
    for (const LastPiece &last : lastPieces) {
        piece(last).offset = offset;
        offset += piece(last).length;
    }
    return Outcome::Ok;
}

void Precinct::placeLast(std::uint64_t offset)
{
    for (const LastPiece &last : lastPieces)
        piece(last).offset += offset;
}

/// B.10.8: the code-blocks row by row. Where many of them lie below a node of the inclusion tree that says that none
/// is included yet, they have no bits, and rows of nothing else are passed over together.
bool Precinct::parseBand(PacketBits &bits, BandState &band, int layer, const CancelFlag &cancel,
                         std::uint64_t *bodyLength)
{
    for (std::uint32_t y = 0; y < band.down() && bits.ok() && !cancel.isRaised();) {
        std::uint32_t nextRow = band.down();
        for (std::uint32_t x = 0; x < band.across() && bits.ok();) {
            if (band.inclusion.isBelow(bits, x, y, layer + 1)) {
                if (!parseCodeBlock(bits, band, x, y, layer, bodyLength))
                    return false;
                nextRow = y + 1;
                ++x;
                continue;
            }
            const int level = band.inclusion.levelNotBelow();
            x = ((x >> level) + 1) << level;
            nextRow = std::min(nextRow, ((y >> level) + 1) << level);
        }
        y = nextRow;
    }
    return true;
}

/// B.10.4 to B.10.6, of a code-block that is included. In which layer one is first included stands in a tag tree, and
/// so does its number of zero bit-planes, which is told then; from there on one bit a packet says whether there is more
/// of it.
bool Precinct::parseCodeBlock(PacketBits &bits, BandState &band, std::uint32_t x, std::uint32_t y, int layer,
                              std::uint64_t *bodyLength)
{
    std::uint32_t &label = band.inclusion.label();
    if (label != 0) {
        if (!bits.bit())
            return true;
    } else {
        const int planes = band.zeroBitPlanes.value(bits, x, y, kMaxZeroBitPlanes);
        if (planes >= kMaxZeroBitPlanes)
            return false;
        band.included.emplace_back();
        band.included.back().zeroBitPlanes = static_cast<std::uint8_t>(planes);
        label = static_cast<std::uint32_t>(band.included.size());
    }
    CodeBlockState &codeBlock = band.included[label - 1];
    const int passes = readPasses(bits);
    // B.10.7.1: Lblock only grows, also from packet to packet.
    while (bits.bit()) {
        if (++codeBlock.lengthBits > 32)
            return false;
    }
    const std::size_t piecesBefore = codeBlock.pieces.size();
    const bool isSound = parseLengths(bits, codeBlock, passes, layer, bodyLength);
    addLastPieces(band, label - 1, piecesBefore);
    return isSound;
}

void Precinct::addLastPieces(BandState &band, std::size_t codeBlock, std::size_t firstPiece)
{
    const auto bandNumber = static_cast<std::uint32_t>(&band - bandStates.data());
    for (std::size_t i = firstPiece; i < band.included[codeBlock].pieces.size(); ++i)
        lastPieces.push_back({bandNumber, static_cast<std::uint32_t>(codeBlock), static_cast<std::uint32_t>(i)});
    pieceCount += band.included[codeBlock].pieces.size() - firstPiece;
}

/// In high-throughput code-blocks whole sets of three passes may come first that have no bytes and stand for a
/// bit-plane each (ISO/IEC 15444-15 annex B). Takes them off \a passes.
bool Precinct::skipPlaceholders(CodeBlockState &codeBlock, int *passes, int *placeholders) const
{
    *placeholders = 0;
    if (!(codeBlockStyle & CodeBlockStyle::kHighThroughput) || codeBlock.passes > 0)
        return true;
    const int sets = (*passes - 1) / kPassesOfSet;
    *placeholders = sets * kPassesOfSet;
    *passes -= *placeholders;
    codeBlock.zeroBitPlanes = static_cast<std::uint8_t>(codeBlock.zeroBitPlanes + sets);
    return codeBlock.zeroBitPlanes < kMaxZeroBitPlanes;
}

/// B.10.7: one length for each codeword segment that the packet adds to, in Lblock bits and as many more as the passes
/// are worth (B.10.7.1). The passes may go on in a segment that an earlier packet has begun.
bool Precinct::parseLengths(PacketBits &bits, CodeBlockState &codeBlock, int passes, int layer,
                            std::uint64_t *bodyLength)
{
    int placeholders = 0;
    if (codeBlock.passes + passes > kMaxPasses || !skipPlaceholders(codeBlock, &passes, &placeholders))
        return false;
    while (passes > 0) {
        int inSegment = kMaxPasses;
        if (codeBlockStyle & CodeBlockStyle::kManySegments) {
            // Passes left in the segment that is open.
            int begun = 0;
            for (auto piece = codeBlock.pieces.rbegin(); piece != codeBlock.pieces.rend() && !piece->endsSegment;
                 ++piece)
                begun += piece->passes;
            inSegment = passesInSegment(codeBlockStyle, codeBlock.passes - begun) - begun;
        }
        CodeBlockPiece piece;
        piece.passes = static_cast<std::uint8_t>(std::min(passes, inSegment));
        piece.endsSegment = piece.passes == inSegment;
        piece.layer = static_cast<std::uint16_t>(layer);
        // Placeholder passes have no length of their own, but widen that of the segment after them.
        const int count = codeBlock.lengthBits + floorLog2(static_cast<unsigned>(piece.passes + placeholders));
        if (count > 32)
            return false;
        piece.length = bits.bits(count);
        *bodyLength += piece.length;
        codeBlock.passes = static_cast<std::uint8_t>(codeBlock.passes + piece.passes);
        passes -= piece.passes;
        placeholders = 0;
        codeBlock.pieces.push_back(piece);
    }
    return true;
}

std::uint64_t Precinct::ampleHeader() const
{
    const bool manySegments = codeBlockStyle & (CodeBlockStyle::kBypass | CodeBlockStyle::kTerminateAll);
    std::uint64_t count = 0;
    for (const BandState &band : bandStates)
        count += std::uint64_t(band.across()) * band.down();
    return 64 + count * (manySegments ? 256 : 32);
}

std::size_t Precinct::memoryUse() const
{
    std::size_t sum = sizeof(*this) + lastPieces.capacity() * sizeof(LastPiece);
    for (const BandState &band : bandStates)
        sum += band.memoryUse();
    return sum + pieceCount * sizeof(CodeBlockPiece);
}

const CodeBlockState &BandState::codeBlock(std::uint32_t number) const
{
    static const CodeBlockState kUntold;
    const std::uint32_t label = inclusion.labelOf(number % across(), number / across());
    return label != 0 ? included[label - 1] : kUntold;
}

std::size_t BandState::memoryUse() const
{
    return sizeof(*this) + inclusion.memoryUse() + zeroBitPlanes.memoryUse() +
           included.capacity() * sizeof(CodeBlockState);
}

} // namespace xrv
