#include "packetindex.h"

#include "base/bytecursor.h"
#include "base/varint.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace xrv {

namespace {

constexpr std::uint64_t kMaxLength = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint64_t kShortestHeader = 14; ///< SOT marker segment and SOD marker

} // namespace

void PacketIndex::append(std::uint32_t tile, std::uint32_t headerLength,
                         const std::vector<std::uint32_t> &packetLengths)
{
    allParts.push_back({tile, total, headerLength, static_cast<std::uint32_t>(lengths.size()),
                        static_cast<std::uint32_t>(packetLengths.size())});
    lengths.insert(lengths.end(), packetLengths.begin(), packetLengths.end());
    total += length(allParts.back());
}

std::uint64_t PacketIndex::length(const Part &part) const
{
    std::uint64_t sum = part.headerLength;
    for (std::uint32_t i = 0; i < part.packets; ++i)
        sum += lengths[part.firstPacket + i];
    return sum;
}

std::vector<PacketIndex::Part> PacketIndex::partsOf(std::uint32_t tile) const
{
    std::vector<Part> parts;
    auto at = std::lower_bound(byTile.begin(), byTile.end(), tile, [this](std::uint32_t part, std::uint32_t wanted) {
        return allParts[part].tile < wanted;
    });
    for (; at != byTile.end() && allParts[*at].tile == tile; ++at)
        parts.push_back(allParts[*at]);
    return parts;
}

void PacketIndex::sortByTile()
{
    byTile.resize(allParts.size());
    std::iota(byTile.begin(), byTile.end(), 0u);
    std::stable_sort(byTile.begin(), byTile.end(),
                     [this](std::uint32_t a, std::uint32_t b) { return allParts[a].tile < allParts[b].tile; });
}

Bytes PacketIndex::content() const
{
    Bytes bytes;
    appendVarint(&bytes, allParts.size());
    for (const Part &part : allParts) {
        appendVarint(&bytes, part.tile);
        appendVarint(&bytes, part.headerLength);
        appendVarint(&bytes, part.packets);
        for (std::uint32_t i = 0; i < part.packets; ++i)
            appendVarint(&bytes, lengths[part.firstPacket + i]);
    }
    return bytes;
}

std::shared_ptr<const PacketIndex> PacketIndex::parse(const Bytes &content, std::uint32_t tiles, std::uint64_t bytes)
{
    ByteCursor in(content.data(), content.size());
    std::uint64_t parts = 0;
    // Three bytes is the least that a tile-part takes, and one a packet: the content bounds what is kept.
    if (!readVarint(&in, &parts) || parts > in.remaining() / 3)
        return nullptr;
    auto index = std::make_shared<PacketIndex>();
    std::vector<std::uint32_t> packetLengths;
    for (std::uint64_t i = 0; i < parts; ++i) {
        std::uint64_t tile = 0, header = 0, packets = 0;
        if (!readVarint(&in, &tile) || !readVarint(&in, &header) || !readVarint(&in, &packets))
            return nullptr;
        if (tile >= tiles || header < kShortestHeader || header > kMaxLength || packets > in.remaining())
            return nullptr;
        packetLengths.assign(static_cast<std::size_t>(packets), 0);
        for (std::uint32_t &length : packetLengths) {
            std::uint64_t value = 0;
            if (!readVarint(&in, &value) || value == 0 || value > kMaxLength)
                return nullptr;
            length = static_cast<std::uint32_t>(value);
        }
        index->append(static_cast<std::uint32_t>(tile), static_cast<std::uint32_t>(header), packetLengths);
        if (index->total > bytes)
            return nullptr;
    }
    index->sortByTile();
    return index->total == bytes ? index : nullptr;
}

} // namespace xrv
