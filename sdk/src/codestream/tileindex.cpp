#include "tileindex.h"

#include "../io/bytecursor.h"
#include "packedheaders.h"
#include "packetwalk.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

constexpr std::uint64_t kFirstRead = 1024;
constexpr std::uint64_t kLongestTileHeader = 64 * 1024 * 1024;

/// Packet lengths of one tile-part: 7 bits a byte, the highest bit says that more follow (A.7.3).
std::vector<std::uint32_t> packetLengths(std::vector<MarkerSegment> &segments)
{
    std::stable_sort(segments.begin(), segments.end(), [](const MarkerSegment &a, const MarkerSegment &b) {
        return !a.payload.empty() && !b.payload.empty() && a.payload[0] < b.payload[0];
    });
    std::vector<std::uint32_t> lengths;
    std::uint32_t value = 0;
    for (const MarkerSegment &segment : segments) {
        for (std::size_t i = 1; i < segment.payload.size(); ++i) {
            value = value << 7 | (segment.payload[i] & 0x7F);
            if (!(segment.payload[i] & 0x80)) {
                lengths.push_back(value);
                value = 0;
            }
        }
    }
    return lengths;
}

} // namespace

/// Makes a TileIndex.
class TileIndexReader
{
public:
    TileIndexReader(ByteSource &source, const MainHeader &header, std::uint32_t tile)
        : source(source)
        , header(header)
        , tile(tile)
        , cocSet(header.components.size(), false)
        , qccSet(header.components.size(), false)
    {
        index->canvasRect = tileRect(header, tile);
        index->tileStyle = header.style;
        index->quantizations.resize(header.components.size());
        for (const MarkerSegment &segment : header.segments)
            applyQuantization(segment);
        qccSet.assign(qccSet.size(), false);
    }

    CError read(TilePartTable &table)
    {
        std::vector<TilePart> parts;
        if (CError error = table.find(tile, &parts))
            return error;
        index->isPacked = !header.packedHeaders.empty();
        for (const TilePart &part : parts)
            if (CError error = readPart(part))
                return error;
        index->numbering.emplace(header, index->tileStyle, index->canvasRect);
        if (index->isPacked || parts.empty())
            return {};
        placePackets();
        return index->places.empty() && !header.isHighThroughput ? walk() : CError();
    }

    std::shared_ptr<TileIndex> index = std::make_shared<TileIndex>();

private:
    CError readPart(const TilePart &part)
    {
        index->truncated |= part.isTruncated;
        std::vector<MarkerSegment> segments;
        std::size_t position = 0;
        bool isComplete = false;
        if (CError error = readPartHeader(part, &segments, &position, &isComplete))
            return error;
        if (!isComplete) {
            index->truncated = true;
            return {};
        }
        std::vector<MarkerSegment> plt;
        for (MarkerSegment &segment : segments)
            if (CError error = applySegment(segment, &plt))
                return error;
        if (!header.packedHeaders.empty())
            appendPacked(packedHeadersOfPart(header.packedHeaders, part.sequence));
        index->dataRanges.push_back({part.range.offset + position, part.range.length - position});
        lengths.push_back(packetLengths(plt));
        return {};
    }

    /// \a position is set to where the packets begin, after the SOD marker.
    CError readPartHeader(const TilePart &part, std::vector<MarkerSegment> *segments, std::size_t *position,
                          bool *isComplete)
    {
        for (std::uint64_t want = kFirstRead;; want *= 8) {
            const std::uint64_t have = std::min(want, part.range.length);
            Bytes bytes;
            if (CError error = source.read(ByteRange{part.range.offset, have}, &bytes))
                return error;
            segments->clear();
            *position = 12;
            bool incomplete = bytes.size() < 12;
            if (!incomplete && readSegments(bytes, position, {Marker::kSOD}, segments, &incomplete)) {
                *position += 2;
                *isComplete = true;
                return {};
            }
            if (!incomplete || have == part.range.length || have >= kLongestTileHeader) {
                *isComplete = false;
                return {};
            }
        }
    }

    CError applySegment(MarkerSegment &segment, std::vector<MarkerSegment> *plt)
    {
        switch (segment.marker) {
        case Marker::kPLT:
            plt->push_back(std::move(segment));
            return {};
        case Marker::kPPT:
            index->isPacked = true;
            if (segment.payload.size() > 1)
                appendPacked(Bytes(segment.payload.begin() + 1, segment.payload.end()));
            return {};
        case Marker::kPOC:
            // The tile's own progression replaces that of the main header (A.6.6).
            if (!hasOwnProgression)
                index->tileStyle.progressionChanges.clear();
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
        CError error = index->tileStyle.apply(segment, &cocSet);
        index->tileSegments.push_back(std::move(segment));
        return error;
    }

    void appendPacked(const Bytes &bytes) { index->packed.insert(index->packed.end(), bytes.begin(), bytes.end()); }

    void applyQuantization(const MarkerSegment &segment)
    {
        ByteCursor in(segment.payload.data(), segment.payload.size());
        if (segment.marker == Marker::kQCD) {
            for (std::size_t c = 0; c < qccSet.size(); ++c)
                if (!qccSet[c])
                    index->quantizations[c].parameters = segment.payload;
            return;
        }
        if (segment.marker != Marker::kQCC && segment.marker != Marker::kRGN)
            return;
        const std::size_t c = header.components.size() < 257 ? in.u8() : in.u16();
        if (!in.ok() || c >= header.components.size())
            return;
        const Bytes rest(in.here(), in.here() + in.remaining());
        if (segment.marker == Marker::kQCC) {
            index->quantizations[c].parameters = rest;
            qccSet[c] = true;
        } else {
            index->quantizations[c].regionOfInterest = rest;
        }
    }

    /// From the packet lengths, where every tile-part has them and they add up to its bytes.
    void placePackets()
    {
        const PacketNumbering &numbering = *index->numbering;
        if (numbering.count() > kMostPackets || !lengthsAddUp())
            return;
        const std::vector<std::uint32_t> order = packetOrder(header, index->tileStyle, index->canvasRect, numbering);
        std::vector<TileIndex::PacketPlace> places(static_cast<std::size_t>(numbering.count()));
        std::size_t next = 0;
        for (std::size_t part = 0; part < lengths.size(); ++part) {
            std::uint64_t offset = index->dataRanges[part].offset;
            for (const std::uint32_t length : lengths[part]) {
                if (next == order.size())
                    return;
                if (offset + length <= index->dataRanges[part].end())
                    places[order[next]] = {offset, length};
                ++next;
                offset += length;
            }
        }
        index->places = std::move(places);
    }

    CError walk()
    {
        if (index->numbering->count() > kMostPackets)
            return {};
        bool isComplete = false;
        CError error = walkPackets(source, header, index->tileStyle, index->canvasRect, *index->numbering,
                                   index->dataRanges, &index->places, &isComplete);
        index->truncated |= !isComplete;
        return error;
    }

    bool lengthsAddUp() const
    {
        for (std::size_t part = 0; part < lengths.size(); ++part) {
            std::uint64_t sum = 0;
            for (const std::uint32_t length : lengths[part])
                sum += length;
            const std::uint64_t available = index->dataRanges[part].length;
            if (lengths[part].empty() && available > 0)
                return false;
            if (index->truncated ? sum < available : sum != available)
                return false;
        }
        return true;
    }

    ByteSource &source;
    const MainHeader &header;
    const std::uint32_t tile;
    std::vector<bool> cocSet, qccSet;
    bool hasOwnProgression = false;
    std::vector<std::vector<std::uint32_t>> lengths; ///< of the packets, per tile-part
};

CError TileIndex::read(ByteSource &source, const MainHeader &header, TilePartTable &table, std::uint32_t tile,
                       std::shared_ptr<const TileIndex> *index)
{
    TileIndexReader reader(source, header, tile);
    CError error = reader.read(table);
    if (error.IsSuccess())
        *index = std::move(reader.index);
    return error;
}

} // namespace xrv
