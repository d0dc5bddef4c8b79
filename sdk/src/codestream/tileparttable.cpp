#include "tileparttable.h"

#include "../io/bytecursor.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

constexpr std::uint64_t kSotSegment = 12;    ///< bytes of an SOT marker segment with its marker
constexpr std::uint64_t kShortestPart = 14;  ///< SOT segment and SOD marker
constexpr std::size_t kMostParts = 4u << 20; ///< no sound file comes near

struct Sot
{
    std::uint16_t marker = 0;
    std::uint16_t tile = 0;
    std::uint32_t length = 0;
};

Sot parseSot(const Bytes &bytes)
{
    ByteCursor in(bytes.data(), bytes.size());
    Sot sot;
    sot.marker = in.u16();
    in.skip(2);
    sot.tile = in.u16();
    sot.length = in.u32();
    return sot;
}

} // namespace

TilePartTable::TilePartTable(std::shared_ptr<ByteSource> source, ByteRange codestream, const MainHeader &header)
    : source(std::move(source))
    , codestream(codestream)
    , header(header)
{
}

CError TilePartTable::find(std::uint32_t tile, std::vector<TilePart> *parts)
{
    std::lock_guard<std::mutex> lock(mutex);
    if (!isBuilt) {
        if (CError error = build())
            return error;
        isBuilt = true;
    }
    parts->clear();
    auto at = std::lower_bound(entries.begin(), entries.end(), tile,
                               [](const Entry &entry, std::uint32_t wanted) { return entry.tile < wanted; });
    for (; at != entries.end() && at->tile == tile; ++at)
        parts->push_back(at->part);
    return {};
}

std::string TilePartTable::damage() const
{
    std::lock_guard<std::mutex> lock(mutex);
    return damageText;
}

CError TilePartTable::build()
{
    if (!buildFromTlm()) {
        entries.clear();
        if (CError error = buildByWalking())
            return error;
    }
    sortByTile();
    return {};
}

void TilePartTable::append(std::uint32_t tile, std::uint64_t offset, std::uint64_t length)
{
    TilePart part;
    part.sequence = static_cast<std::uint32_t>(entries.size());
    part.isTruncated = offset + length > codestream.end();
    part.range = {offset, std::min(length, codestream.end() - offset)};
    entries.push_back({tile, part});
}

void TilePartTable::sortByTile()
{
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) { return a.tile < b.tile; });
}

/// A.7.1. Writers get TLM wrong, so the place that it gives for the last tile-part is looked at before it is believed.
bool TilePartTable::buildFromTlm()
{
    if (header.tlm.empty())
        return false;
    std::vector<const MarkerSegment *> segments;
    for (const MarkerSegment &segment : header.tlm)
        segments.push_back(&segment);
    std::stable_sort(segments.begin(), segments.end(), [](const MarkerSegment *a, const MarkerSegment *b) {
        return !a->payload.empty() && !b->payload.empty() && a->payload[0] < b->payload[0];
    });
    std::uint64_t offset = codestream.offset + header.length;
    for (const MarkerSegment *segment : segments) {
        ByteCursor in(segment->payload.data(), segment->payload.size());
        in.skip(1);
        const std::uint8_t form = in.u8();
        const int tileBytes = form >> 4 & 3;
        const int lengthBytes = form & 0x40 ? 4 : 2;
        if (tileBytes == 3)
            return false;
        while (in.ok() && in.remaining() >= std::size_t(tileBytes + lengthBytes)) {
            const std::uint32_t tile = tileBytes == 0   ? static_cast<std::uint32_t>(entries.size())
                                       : tileBytes == 1 ? in.u8()
                                                        : in.u16();
            const std::uint64_t length = lengthBytes == 4 ? in.u32() : in.u16();
            if (length < kShortestPart || tile >= header.tileCount() || offset >= codestream.end())
                return false;
            append(tile, offset, length);
            offset += length;
        }
    }
    if (entries.empty() || offset > codestream.end())
        return false;
    Bytes bytes;
    if (source->read(ByteRange{entries.back().part.range.offset, kSotSegment}, &bytes))
        return false;
    const Sot sot = parseSot(bytes);
    return sot.marker == Marker::kSOT && sot.tile == entries.back().tile;
}

CError TilePartTable::buildByWalking()
{
    std::uint64_t offset = codestream.offset + header.length;
    while (offset + kSotSegment <= codestream.end() && entries.size() < kMostParts) {
        Bytes bytes;
        if (CError error = source->read(ByteRange{offset, kSotSegment}, &bytes))
            return error;
        const Sot sot = parseSot(bytes);
        if (sot.marker == Marker::kEOC)
            return {};
        if (sot.marker != Marker::kSOT || sot.tile >= header.tileCount() ||
            (sot.length != 0 && sot.length < kShortestPart)) {
            damageText = "A tile-part is missing at byte " + std::to_string(offset) + ".";
            return {};
        }
        // A.4.2: a length of 0 reaches to the end of the codestream.
        const std::uint64_t length = sot.length != 0 ? sot.length : codestream.end() - offset;
        append(sot.tile, offset, length);
        offset += length;
    }
    if (offset > codestream.end())
        damageText = "The file ends within a tile-part.";
    return {};
}

} // namespace xrv
