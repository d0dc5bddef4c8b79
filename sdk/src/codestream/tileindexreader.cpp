#include "tileindexreader.h"

#include "packedheaders.h"
#include "packetlengths.h"

#include "base/bytecursor.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

constexpr std::uint64_t kMaxTileHeader = std::uint64_t(64) * 1024 * 1024;

/// SOT marker segment and SOD marker: a tile-part with nothing in it, of which nothing need be read.
constexpr std::uint64_t kShortestPart = 14;

/// \a part begins as a tile-part of \a tile does (A.4.2). Tables of tile-parts can be wrong.
bool isOwnPart(const Bytes &part, std::uint32_t tile)
{
    ByteCursor in(part.data(), part.size());
    const std::uint16_t marker = in.u16();
    in.skip(2);
    const std::uint16_t number = in.u16();
    in.skip(6);
    return in.ok() && marker == Marker::kSOT && number == tile;
}

} // namespace

TileIndexReader::TileIndexReader(ByteSource &source, const MainHeader &header, std::uint32_t tile)
    : source(source)
    , header(header)
    , tile(tile)
    , cocSet(header.components.size(), false)
    , qccSet(header.components.size(), false)
{
    made->canvasRect = tileRect(header, tile);
    made->tileStyle = header.style;
    made->quantizations.resize(header.components.size());
    for (const MarkerSegment &segment : header.segments)
        applyQuantization(segment);
    qccSet.assign(qccSet.size(), false);
    made->isPacked = header.packedHeaders != nullptr;
}

TileIndexReader::TileIndexReader(ByteSource &source, const MainHeader &header, const TileIndex &known)
    : source(source)
    , header(header)
    , made(std::make_shared<TileIndex>(known))
{
}

void TileIndexReader::finishHeaders(const CancelFlag &cancel)
{
    made->numbering.emplace(header, made->tileStyle, made->canvasRect);
    const bool canPlace = !made->isMissing() && made->numbering->count() <= kMaxPackets;
    // Lengths do not say how long packed headers are, which are quickly walked through.
    if (canPlace && !made->isPacked)
        placePackets(cancel);
    made->isWalkable = canPlace;
}

void TileIndexReader::useIndex(ByteRange codestream)
{
    const PacketIndex &known = *header.packetIndex;
    for (const PacketIndex::Part &part : known.partsOf(tile)) {
        const std::uint64_t offset = codestream.offset + header.length + part.offset;
        made->dataRanges.push_back({offset + part.headerLength, known.length(part) - part.headerLength});
        lengths.emplace_back();
        for (std::uint32_t i = 0; i < part.packets; ++i)
            lengths.back().push_back(known.packetLength(part.firstPacket + i));
    }
    finishHeaders(CancelFlag());
}

CError TileIndexReader::walk(int resolution, const std::vector<ByteRange> &atHand, const CancelFlag &cancel)
{
    const PacketWalkInput input{header,
                                made->tileStyle,
                                made->canvasRect,
                                *made->numbering,
                                made->dataRanges,
                                atHand,
                                made->isPacked ? &made->packed : nullptr};
    CError error = walkPackets(source, input, resolution, cancel, &made->walk);
    if (error.IsSuccess())
        made->walkedResolution = std::max(made->walkedResolution, resolution);
    return error;
}

CError TileIndexReader::readPart(const TilePart &part, std::uint64_t firstRead, const CancelFlag &cancel)
{
    made->truncated |= part.isTruncated;
    if (part.range.length == kShortestPart && !header.packedHeaders) {
        made->dataRanges.push_back({part.range.end(), 0});
        lengths.emplace_back();
        return {};
    }
    std::vector<MarkerSegment> segments;
    std::size_t position = 0;
    bool isComplete = false;
    if (CError error = readPartHeader(part, firstRead, cancel, &segments, &position, &isComplete))
        return error;
    if (!isComplete) {
        made->truncated = true;
        return {};
    }
    std::vector<MarkerSegment> plt, ppt;
    for (MarkerSegment &segment : segments)
        if (CError error = applySegment(segment, &plt, &ppt))
            return error;
    made->isPacked |= !ppt.empty();
    const Bytes packed =
        header.packedHeaders ? header.packedHeaders->ofPart(part.sequence) : joinedByIndex(std::move(ppt));
    made->packed.insert(made->packed.end(), packed.begin(), packed.end());
    made->dataRanges.push_back({part.range.offset + position, part.range.length - position});
    lengths.push_back(packetLengths(std::move(plt)));
    return {};
}

/// \a position is set to where the packets begin, after the SOD marker.
CError TileIndexReader::readPartHeader(const TilePart &part, std::uint64_t firstRead, const CancelFlag &cancel,
                                       std::vector<MarkerSegment> *segments, std::size_t *position, bool *isComplete)
{
    for (std::uint64_t want = firstRead;; want *= 8) {
        const std::uint64_t have = std::min(want, part.range.length);
        Bytes bytes;
        if (CError error = source.read(ByteRange{part.range.offset, have}, &bytes, cancel))
            return error;
        segments->clear();
        *position = 12;
        bool incomplete = false;
        if (isOwnPart(bytes, tile) && readSegments(bytes, position, {Marker::kSOD}, segments, &incomplete)) {
            *position += 2;
            *isComplete = true;
            return {};
        }
        if (!incomplete || have == part.range.length || have >= kMaxTileHeader) {
            *isComplete = false;
            return {};
        }
    }
}

CError TileIndexReader::applySegment(MarkerSegment &segment, std::vector<MarkerSegment> *plt,
                                     std::vector<MarkerSegment> *ppt)
{
    switch (segment.marker) {
    case Marker::kPLT:
        plt->push_back(std::move(segment));
        return {};
    case Marker::kPPT:
        ppt->push_back(std::move(segment));
        return {};
    case Marker::kPOC:
        // The tile's own progression replaces that of the main header (A.6.6).
        if (!hasOwnProgression)
            made->tileStyle.progressionChanges.clear();
        hasOwnProgression = true;
        break;
    case Marker::kCOD:
    case Marker::kCOC:
    case Marker::kQCD:
    case Marker::kQCC:
    case Marker::kRGN:
        break;
    default:
        return {};
    }
    applyQuantization(segment);
    return made->tileStyle.apply(segment, &cocSet);
}

void TileIndexReader::applyQuantization(const MarkerSegment &segment)
{
    ByteCursor in(segment.payload.data(), segment.payload.size());
    if (segment.marker == Marker::kQCD) {
        for (std::size_t c = 0; c < qccSet.size(); ++c)
            if (!qccSet[c])
                made->quantizations[c].parameters = segment.payload;
        return;
    }
    if (segment.marker != Marker::kQCC && segment.marker != Marker::kRGN)
        return;
    const std::size_t c = header.components.size() < 257 ? in.u8() : in.u16();
    if (!in.ok() || c >= header.components.size())
        return;
    const Bytes rest(in.here(), in.here() + in.remaining());
    if (segment.marker == Marker::kQCC) {
        made->quantizations[c].parameters = rest;
        qccSet[c] = true;
    } else {
        made->quantizations[c].regionOfInterest = rest;
    }
}

/// From the packet lengths, where every tile-part has them and they add up to its bytes.
void TileIndexReader::placePackets(const CancelFlag &cancel)
{
    const PacketNumbering &numbering = *made->numbering;
    if (!lengthsAddUp())
        return;
    PacketSequence sequence(header, made->tileStyle, made->canvasRect, numbering, cancel);
    PacketWalk placed;
    PacketName packet;
    for (std::size_t part = 0; part < lengths.size(); ++part) {
        std::uint64_t offset = made->dataRanges[part].offset;
        for (const std::uint32_t length : lengths[part]) {
            if (!sequence.next(&packet))
                return;
            if (length > 0 && offset + length <= made->dataRanges[part].end())
                placed.places.add(
                    {offset, length,
                     numbering.number(packet.component, packet.resolution, packet.precinct, packet.layer)});
            offset += length;
        }
    }
    placed.places.sort();
    placed.isBegun = placed.isFinished = true;
    made->walk = std::move(placed);
}

bool TileIndexReader::lengthsAddUp() const
{
    for (std::size_t part = 0; part < lengths.size(); ++part) {
        std::uint64_t sum = 0;
        for (const std::uint32_t length : lengths[part])
            sum += length;
        const std::uint64_t available = made->dataRanges[part].length;
        if (lengths[part].empty() && available > 0)
            return false;
        if (made->truncated ? sum < available : sum != available)
            return false;
    }
    return true;
}

} // namespace xrv
