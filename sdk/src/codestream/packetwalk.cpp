#include "packetwalk.h"

#include "imagebudget.h"
#include "precinct.h"

#include <algorithm>
#include <memory>
#include <unordered_map>

using PLK::CError;

namespace xrv {

namespace {

/// Bytes read ahead at a time.
constexpr std::uint64_t kWindow = std::uint64_t(256) * 1024;
/// More than that, and somewhat more than was asked for, only as it is needed.
constexpr std::uint64_t kMaxAhead = std::uint64_t(64) << 20, kMargin = std::uint64_t(1) << 20;
constexpr std::uint64_t kSop = 6; ///< SOP marker segment
/// SOP marker segment, an empty packet header and EPH marker.
constexpr std::uint64_t kShortestLook = kSop + 3;

/// Goes through the bytes of the tile-parts; packets never reach from one into the next.
class Walker
{
public:
    Walker(ByteSource &source, const PacketWalkInput &tile, const CancelFlag &cancel, const PacketWalk &walk)
        : position(walk.position)
        , part(walk.part)
        , source(source)
        , data(tile.data)
        , atHand(tile.atHand)
        , cancel(cancel)
    {
    }

    /// Moves on to the next tile-part when the present one is used up; false after the last.
    bool atPacket()
    {
        while (part < data.size() && position >= data[part].end()) {
            if (++part < data.size())
                position = data[part].offset;
        }
        return part < data.size();
    }

    /// Makes at least \a count bytes available, or all that the tile-part has left.
    CError fetch(std::uint64_t count)
    {
        count = std::min(count, data[part].end() - position);
        if (position >= windowStart && position + count <= windowStart + window.size())
            return {};
        windowStart = position;
        const bool isAtHand = part < atHand.size() && position + count <= atHand[part].end();
        const std::uint64_t end = isAtHand ? atHand[part].end() : data[part].end();
        // Large headers are asked for packet by packet, each of which would read nearly the same again.
        const std::uint64_t wanted = count > kWindow ? count + kMargin : kWindow;
        return source.read(ByteRange{position, std::min(wanted, end - position)}, &window, cancel);
    }
    /// Moves on behind the SOP marker segment of 6 bytes (A.8.1) that may stand here.
    CError skipSop()
    {
        if (!atPacket())
            return {};
        if (CError error = fetch(kSop))
            return error;
        if (available() >= kSop && bytes()[0] == 0xFF && bytes()[1] == 0x91)
            position += kSop;
        return {};
    }
    bool isCancelled() const { return cancel.isRaised(); }
    const CancelFlag &flag() const { return cancel; }
    const std::uint8_t *bytes() const { return window.data() + (position - windowStart); }
    std::size_t available() const
    {
        return static_cast<std::size_t>(std::min(windowStart + window.size(), data[part].end()) - position);
    }
    std::uint64_t left() const { return data[part].end() - position; }
    bool hasAll() const { return available() == left(); }

    std::uint64_t position;
    std::size_t part;

private:
    ByteSource &source;
    const std::vector<ByteRange> &data;
    const std::vector<ByteRange> &atHand;
    const CancelFlag &cancel;
    Bytes window;
    std::uint64_t windowStart = 0;
};

/// The precincts of a tile while their packets go by: those of which a packet was more than empty.
class PrecinctTable
{
public:
    explicit PrecinctTable(const PacketWalkInput &tile)
        : tile(tile)
    {
        for (const ByteRange &range : tile.data)
            bytes += range.length;
        if (tile.packedHeaders)
            bytes += tile.packedHeaders->size();
    }

    std::unique_ptr<Precinct> &of(const PacketName &packet)
    {
        std::unique_ptr<Precinct> &precinct = precincts[keyOf(packet)];
        if (!precinct) {
            precinct = std::make_unique<Precinct>(componentRect(tile.rect, tile.header.components[packet.component]),
                                                  tile.style.components[packet.component],
                                                  tile.numbering.grid(packet.component, packet.resolution),
                                                  packet.resolution, packet.precinct, tile.style.usesEph());
            memory += precinct->memoryUse();
        }
        return precinct;
    }
    /// After the precinct's last packet: a large tile has more precincts than memory should hold at a time.
    void drop(const PacketName &packet)
    {
        const auto found = precincts.find(keyOf(packet));
        if (found == precincts.end())
            return;
        memory -= found->second->memoryUse();
        precincts.erase(found);
    }

    /// A precinct that took \a before bytes takes \a after.
    CError account(std::size_t before, std::size_t after)
    {
        memory += after - before;
        return ImageBudget(bytes).admitPacketHeaders(memory);
    }

private:
    std::uint32_t keyOf(const PacketName &packet) const
    {
        return tile.numbering.number(packet.component, packet.resolution, packet.precinct, 0);
    }

    const PacketWalkInput &tile;
    std::uint64_t bytes = 0;
    std::size_t memory = 0; ///< of the precincts
    std::unordered_map<std::uint32_t, std::unique_ptr<Precinct>> precincts;
};

/// What a packet takes in the tile-part.
struct PacketLength
{
    std::uint64_t bytes = 0;
    bool isSound = false;
};

/// An empty packet is a header of one byte (B.10.3): the common case in files of many layers, for which nothing need be
/// known of its precinct.
bool isEmptyPacket(Walker &walker, bool usesEph, PacketLength *length)
{
    const std::uint8_t *bytes = walker.bytes();
    const std::size_t available = walker.available();
    const std::size_t sop = available >= 6 && bytes[0] == 0xFF && bytes[1] == 0x91 ? 6 : 0;
    if (available < sop + 3 || (bytes[sop] & 0x80))
        return false;
    const bool hasEph = usesEph && bytes[sop + 1] == 0xFF && bytes[sop + 2] == 0x92;
    *length = {sop + (hasEph ? 3u : 1u), true};
    return true;
}

/// Parses one packet's header at the walker's position. How long it is shows only when it is parsed, and a parse that
/// runs out of bytes has spoilt the precinct's state: where that may happen, it works on what can be taken back. Copies
/// are dear, so they are made only close to the end of what has been read or for headers of unusual length.
CError parseHere(Walker &walker, std::unique_ptr<Precinct> &precinct, int layer, PacketLength *length)
{
    const std::uint64_t ample = precinct->ampleHeader();
    for (std::uint64_t want = std::min(ample, kMaxAhead);; want *= 4) {
        if (CError error = walker.fetch(want))
            return error;
        const bool mayNeedMore = !walker.hasAll() && walker.available() < ample;
        std::unique_ptr<Precinct> copy;
        if (mayNeedMore || want > ample)
            copy = std::make_unique<Precinct>(*precinct);
        std::size_t headerLength = 0;
        std::uint64_t bodyLength = 0;
        const Precinct::Outcome outcome =
            precinct->parse(walker.bytes(), walker.available(), layer, walker.flag(), &headerLength, &bodyLength);
        *length = {headerLength + bodyLength, outcome == Precinct::Outcome::Ok};
        if (outcome != Precinct::Outcome::NeedsMore || walker.hasAll() || !copy)
            return {};
        precinct = std::move(copy);
    }
}

CError measure(Walker &walker, PrecinctTable &precincts, const PacketName &packet, bool usesEph, PacketLength *length)
{
    if (CError error = walker.fetch(kShortestLook))
        return error;
    if (isEmptyPacket(walker, usesEph, length))
        return {};
    std::unique_ptr<Precinct> &precinct = precincts.of(packet);
    const std::size_t before = precinct->memoryUse();
    if (CError error = parseHere(walker, precinct, packet.layer, length))
        return error;
    return precincts.account(before, precinct->memoryUse());
}

/// Steps over the packet at the walker's position. \a isSound is false where the data end or contradict themselves;
/// \a place then has what there is.
CError stepOver(Walker &walker, PrecinctTable &precincts, const PacketName &packet, const PacketWalkInput &tile,
                PacketWalk *walk)
{
    walk->isBroken = true;
    if (!walker.atPacket())
        return {};
    PacketLength length;
    if (CError error = measure(walker, precincts, packet, tile.style.usesEph(), &length))
        return error;
    if (walker.isCancelled())
        return {PLK_ERR_CANCELLED, "The read was cancelled."};
    if (!length.isSound)
        return {};
    const std::uint64_t there = std::min(length.bytes, walker.left());
    walk->places.add({walker.position, static_cast<std::uint32_t>(std::min<std::uint64_t>(there, 0xFFFFFFFFu)),
                      tile.numbering.number(packet.component, packet.resolution, packet.precinct, packet.layer)});
    walk->isBroken = there != length.bytes;
    walker.position += there;
    if (packet.layer == tile.numbering.layers() - 1)
        precincts.drop(packet);
    return {};
}

/// Parses the next of the packed headers.
CError measurePacked(Walker &walker, PrecinctTable &precincts, const PacketName &packet, const PacketWalkInput &tile,
                     std::size_t position, std::size_t *headerLength, PacketLength *body)
{
    const std::uint8_t *header = tile.packedHeaders->data() + position;
    const std::size_t size = tile.packedHeaders->size() - position;
    if (size > 0 && !(header[0] & 0x80)) { // B.10.3: empty
        const bool hasEph = tile.style.usesEph() && size >= 3 && header[1] == 0xFF && header[2] == 0x92;
        *headerLength = hasEph ? 3 : 1;
        *body = {0, true};
        return {};
    }
    std::unique_ptr<Precinct> &precinct = precincts.of(packet);
    const std::size_t before = precinct->memoryUse();
    body->isSound =
        precinct->parse(header, size, packet.layer, walker.flag(), headerLength, &body->bytes) == Precinct::Outcome::Ok;
    return precincts.account(before, precinct->memoryUse());
}

/// As stepOver(), where headers stand apart from bodies (A.7.4, A.7.5). Bodies may be empty.
CError stepOverPacked(Walker &walker, PrecinctTable &precincts, const PacketName &packet, const PacketWalkInput &tile,
                      PacketWalk *walk)
{
    walk->isBroken = true;
    std::size_t headerLength = 0;
    PacketLength body;
    if (CError error = measurePacked(walker, precincts, packet, tile, walk->packedPosition, &headerLength, &body))
        return error;
    if (walker.isCancelled())
        return {PLK_ERR_CANCELLED, "The read was cancelled."};
    if (!body.isSound)
        return {};
    if (tile.style.usesSop())
        if (CError error = walker.skipSop())
            return error;
    const std::uint64_t there = body.bytes > 0 && walker.atPacket() ? std::min(body.bytes, walker.left()) : 0;
    const std::uint32_t number =
        tile.numbering.number(packet.component, packet.resolution, packet.precinct, packet.layer);
    walk->headers.add({walk->packedPosition, static_cast<std::uint32_t>(headerLength), number});
    walk->places.add(
        {walker.position, static_cast<std::uint32_t>(std::min<std::uint64_t>(there, 0xFFFFFFFFu)), number});
    walk->packedPosition += headerLength;
    walk->isBroken = there != body.bytes;
    walker.position += there;
    if (packet.layer == tile.numbering.layers() - 1)
        precincts.drop(packet);
    return {};
}

} // namespace

bool isByResolution(const TileStyle &style)
{
    constexpr std::uint8_t kRlcp = 1, kRpcl = 2;
    return style.progressionChanges.empty() && (style.progression == kRlcp || style.progression == kRpcl);
}

PacketPlace PacketPlaces::of(std::uint32_t packet) const
{
    // As a rule all of them are there.
    if (packet < places.size() && places[packet].packet == packet)
        return places[packet];
    const auto found = std::lower_bound(places.begin(), places.end(), packet,
                                        [](const PacketPlace &place, std::uint32_t p) { return place.packet < p; });
    return found != places.end() && found->packet == packet ? *found : PacketPlace();
}

void PacketPlaces::sort()
{
    const auto byNumber = [](const PacketPlace &a, const PacketPlace &b) { return a.packet < b.packet; };
    if (!std::is_sorted(places.begin(), places.end(), byNumber))
        std::sort(places.begin(), places.end(), byNumber);
}

CError walkPackets(ByteSource &source, const PacketWalkInput &tile, int resolution, const CancelFlag &cancel,
                   PacketWalk *walk)
{
    PacketWalk ahead = *walk;
    if (!ahead.isBegun)
        ahead.position = tile.data.empty() ? 0 : tile.data[0].offset;
    ahead.isBegun = true;
    Walker walker(source, tile, cancel, ahead);
    // Where a walk by resolution pauses, every precinct that was begun has all of its layers: no state is left behind.
    PrecinctTable precincts(tile);
    const bool mayPause = isByResolution(tile.style);
    PacketSequence sequence(tile.header, tile.style, tile.rect, tile.numbering, cancel);
    PacketName packet;
    for (std::uint64_t i = 0; i < ahead.next; ++i)
        sequence.next(&packet);
    while (!ahead.isBroken && !ahead.isFinished) {
        ahead.isFinished = !sequence.next(&packet);
        if (cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        if (ahead.isFinished || (mayPause && packet.resolution > resolution))
            break;
        if (CError error = tile.packedHeaders ? stepOverPacked(walker, precincts, packet, tile, &ahead)
                                              : stepOver(walker, precincts, packet, tile, &ahead))
            return error;
        ++ahead.next;
    }
    ahead.isFinished |= ahead.isBroken;
    ahead.position = walker.position;
    ahead.part = walker.part;
    ahead.places.sort();
    ahead.headers.sort();
    *walk = std::move(ahead);
    return {};
}

} // namespace xrv
