#include "codestreamassembler.h"

#include "base/bytewriter.h"
#include "base/varint.h"

#include <algorithm>
#include <limits>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::size_t kMaxSegmentBytes = 65535;
constexpr std::size_t kTlmEntry = 6;
constexpr std::size_t kLengthAt = 6; ///< of Psot in the SOT marker segment with its marker
constexpr const char *kComment = "Ordered by resolution for streaming.";

void appendSegment(Bytes *bytes, std::uint16_t marker, const Bytes &payload)
{
    ByteWriter out(bytes);
    out.u16(marker);
    out.u16(static_cast<std::uint32_t>(payload.size() + 2));
    out.append(payload);
}

/// A.7.3. A packet's length may not be split between two marker segments.
void appendPlt(Bytes *bytes, const std::vector<std::uint32_t> &lengths)
{
    Bytes payload{0};
    for (const std::uint32_t length : lengths) {
        Bytes number;
        appendVarint(&number, length);
        if (payload.size() + number.size() > kMaxSegmentBytes - 2) {
            appendSegment(bytes, Marker::kPLT, payload);
            payload.assign(1, static_cast<std::uint8_t>(payload[0] + 1));
        }
        payload.insert(payload.end(), number.begin(), number.end());
    }
    if (payload.size() > 1)
        appendSegment(bytes, Marker::kPLT, payload);
}

/// A.5.1.
Bytes makeSiz(const CodestreamAssembler::Layout &layout, std::uint16_t capabilities)
{
    Bytes payload;
    ByteWriter out(&payload);
    out.u16(capabilities);
    for (const std::uint32_t number :
         {layout.width, layout.height, 0u, 0u, layout.tileWidth, layout.tileHeight, 0u, 0u})
        out.u32(number);
    out.u16(static_cast<std::uint32_t>(layout.bands.size()));
    for (const XrvBand &band : layout.bands) {
        out.u8((band.bits - 1u) | (band.isSigned ? 0x80u : 0u));
        out.u8(1);
        out.u8(1);
    }
    return payload;
}

bool areSame(const std::vector<MarkerSegment> &a, const std::vector<MarkerSegment> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const MarkerSegment &x, const MarkerSegment &y) {
        return x.marker == y.marker && x.payload == y.payload;
    });
}

} // namespace

std::uint32_t CodestreamAssembler::Layout::tileCount() const
{
    const std::uint64_t across = (std::uint64_t(width) + tileWidth - 1) / tileWidth;
    const std::uint64_t down = (std::uint64_t(height) + tileHeight - 1) / tileHeight;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(across * down, 0xFFFFFFFF));
}

CodestreamAssembler::CodestreamAssembler(Layout layout)
    : layout(std::move(layout))
    , tiles(this->layout.tileCount())
{
}

CError CodestreamAssembler::open(const std::string &path)
{
    return spool.open(path);
}

CError CodestreamAssembler::add(std::uint32_t number, const EncodedTile &encoded)
{
    Tile &tile = tiles[number];
    if (imageSegments.empty()) {
        imageSegments = encoded.segments;
        capabilities = encoded.capabilities;
    } else if (!areSame(imageSegments, encoded.segments)) {
        tile.segments = encoded.segments;
    }
    for (const EncodedTile::Part &part : encoded.parts) {
        tile.parts.push_back({{spool.size(), part.packets.size()}, part.lengths, {}});
        if (CError error = spool.write(part.packets))
            return error;
    }
    return {};
}

/// Calls \a visit(tile, resolution) for all tile-parts in the order of the codestream.
template <typename Visitor> CError CodestreamAssembler::visitParts(Visitor visit)
{
    std::size_t most = 0;
    for (const Tile &tile : tiles)
        most = std::max(most, tile.parts.size());
    for (std::size_t resolution = 0; resolution < most; ++resolution) {
        for (std::uint32_t tile = 0; tile < tiles.size(); ++tile) {
            if (resolution >= tiles[tile].parts.size())
                continue;
            if (CError error = visit(tile, resolution))
                return error;
        }
    }
    return {};
}

/// A.4.2, A.4.3.
Bytes CodestreamAssembler::partHeader(std::uint32_t number, std::size_t resolution) const
{
    const Tile &tile = tiles[number];
    const Part &part = tile.parts[resolution];
    Bytes bytes;
    ByteWriter out(&bytes);
    out.u16(Marker::kSOT);
    out.u16(10);
    out.u16(number);
    out.u32(0); // its length, below
    out.u8(static_cast<std::uint32_t>(resolution));
    out.u8(static_cast<std::uint32_t>(tile.parts.size()));
    if (resolution == 0)
        for (const MarkerSegment &segment : tile.segments)
            appendSegment(&bytes, segment.marker, segment.payload);
    appendPlt(&bytes, part.lengths);
    out.u16(Marker::kSOD);
    out.patchU32(kLengthAt, static_cast<std::uint32_t>(bytes.size() + part.packets.length));
    return bytes;
}

CError CodestreamAssembler::finish()
{
    constexpr std::uint64_t kMaxPart = std::numeric_limits<std::uint32_t>::max() - (1u << 20);
    std::uint64_t partBytes = 0;
    CError error = visitParts([&](std::uint32_t tile, std::size_t resolution) {
        Part &part = tiles[tile].parts[resolution];
        if (part.packets.length > kMaxPart)
            return CError(PLK_ERR_UNSUPPORTED, "A tile has more than four gigabytes; take smaller blocks.");
        part.header = partHeader(tile, resolution);
        packetIndex.append(tile, static_cast<std::uint32_t>(part.header.size()), part.lengths);
        partBytes += part.header.size() + part.packets.length;
        return CError();
    });
    header = mainHeader();
    totalLength = header.size() + partBytes + 2;
    return error;
}

bool CodestreamAssembler::isIndexComplete() const
{
    return std::all_of(tiles.begin(), tiles.end(), [](const Tile &tile) { return tile.segments.empty(); });
}

/// A.7.1.
void CodestreamAssembler::appendTlm(Bytes *bytes) const
{
    constexpr std::size_t kMaxEntries = (kMaxSegmentBytes - 4) / kTlmEntry;
    const std::vector<PacketIndex::Part> &parts = packetIndex.parts();
    for (std::size_t first = 0; first < parts.size(); first += kMaxEntries) {
        Bytes payload;
        ByteWriter out(&payload);
        out.u8(static_cast<std::uint32_t>(first / kMaxEntries));
        out.u8(0x60); // 16-bit tile numbers, 32-bit lengths
        for (std::size_t i = first; i < std::min(first + kMaxEntries, parts.size()); ++i) {
            out.u16(parts[i].tile);
            out.u32(static_cast<std::uint32_t>(packetIndex.length(parts[i])));
        }
        appendSegment(bytes, Marker::kTLM, payload);
    }
}

Bytes CodestreamAssembler::mainHeader() const
{
    Bytes bytes;
    ByteWriter out(&bytes);
    out.u16(Marker::kSOC);
    appendSegment(&bytes, Marker::kSIZ, makeSiz(layout, capabilities));
    for (const MarkerSegment &segment : imageSegments)
        appendSegment(&bytes, segment.marker, segment.payload);
    Bytes comment{0, 1}; // Latin text: A.9.2
    for (const char *c = kComment; *c; ++c)
        comment.push_back(static_cast<std::uint8_t>(*c));
    appendSegment(&bytes, Marker::kCOM, comment);
    appendTlm(&bytes);
    return bytes;
}

CError CodestreamAssembler::write(OutputFile *output, const std::function<bool(double)> &progress)
{
    if (CError error = output->write(header))
        return error;
    std::uint64_t done = header.size();
    Bytes packets;
    CError error = visitParts([&](std::uint32_t tile, std::size_t resolution) {
        const Part &part = tiles[tile].parts[resolution];
        CError failed = spool.readBack(part.packets, &packets);
        if (failed.IsSuccess())
            failed = output->write(part.header);
        if (failed.IsSuccess())
            failed = output->write(packets);
        done += part.header.size() + packets.size();
        if (failed.IsSuccess() && !progress(static_cast<double>(done) / static_cast<double>(totalLength)))
            failed = CError(PLK_ERR_CANCELLED, "The compression was cancelled.");
        return failed;
    });
    return error ? error : output->write({0xFF, 0xD9}); // EOC
}

} // namespace xrv
