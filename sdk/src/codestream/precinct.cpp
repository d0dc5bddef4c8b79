#include "precinct.h"

#include "segmentlengths.h"

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

constexpr int kMaxZeroBitPlanes = 74; ///< more than 7 guard bits and 5-bit exponents with a region of interest allow

} // namespace

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

bool Precinct::parseLengths(PacketBits &bits, CodeBlockState &codeBlock, int passes, int layer,
                            std::uint64_t *bodyLength)
{
    const std::size_t before = codeBlock.pieces.size();
    if (!readSegmentLengths(bits, codeBlockStyle, passes, &codeBlock))
        return false;
    for (std::size_t i = before; i < codeBlock.pieces.size(); ++i) {
        codeBlock.pieces[i].layer = static_cast<std::uint16_t>(layer);
        *bodyLength += codeBlock.pieces[i].length;
    }
    return true;
}

std::uint64_t Precinct::ampleHeader() const
{
    const bool manySegments = codeBlockStyle & CodeBlockStyle::kManySegments;
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
