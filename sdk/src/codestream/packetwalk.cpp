#include "packetwalk.h"

#include "precinct.h"

#include <algorithm>
#include <memory>
#include <optional>

using PLK::CError;

namespace xrv {

namespace {

/// Bytes read ahead at a time.
constexpr std::uint64_t kWindow = std::uint64_t(256) * 1024;

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
        return source.read(ByteRange{position, std::min(std::max(count, kWindow), end - position)}, &window, cancel);
    }
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

/// The precincts of a tile while their packets go by.
class PrecinctTable
{
public:
    explicit PrecinctTable(const PacketWalkInput &tile)
        : numbering(tile.numbering)
        , style(tile.style)
    {
        for (std::size_t c = 0; c < style.components.size(); ++c) {
            rects.push_back(componentRect(tile.rect, tile.header.components[c]));
            for (int r = 0; r < numbering.resolutions(static_cast<int>(c)); ++r)
                firsts.push_back({numbering.number(static_cast<int>(c), r, 0, 0), static_cast<int>(c), r});
        }
        precincts.resize(static_cast<std::size_t>(numbering.count() / numbering.layers()));
    }

    std::unique_ptr<Precinct> &of(std::uint32_t packet)
    {
        std::unique_ptr<Precinct> &precinct = precincts[packet / numbering.layers()];
        if (precinct)
            return precinct;
        const First &first = firstOf(packet);
        const std::int64_t index = (packet - first.packet) / numbering.layers();
        precinct = std::make_unique<Precinct>(rects[first.component], style.components[first.component],
                                              numbering.grid(first.component, first.resolution), first.resolution,
                                              index, style.usesEph());
        return precinct;
    }

    int resolution(std::uint32_t packet) const { return firstOf(packet).resolution; }

private:
    struct First
    {
        std::uint32_t packet;
        int component, resolution;
    };
    /// The last resolution that begins at or before the packet; empty ones begin where the next does.
    const First &firstOf(std::uint32_t packet) const
    {
        const auto after = std::upper_bound(firsts.begin(), firsts.end(), packet,
                                            [](std::uint32_t number, const First &f) { return number < f.packet; });
        return *(after - 1);
    }

    const PacketNumbering &numbering;
    const TileStyle &style;
    std::vector<IntRect> rects;
    std::vector<First> firsts;
    std::vector<std::unique_ptr<Precinct>> precincts;
};

/// Parses one packet's header at the walker's position. How long it is shows only when it is parsed, and a parse that
/// runs out of bytes has spoilt the precinct's state: where that may happen, it works on what can be taken back. Copies
/// are dear, so they are made only close to the end of what has been read or for headers of unusual length.
CError parseHere(Walker &walker, std::unique_ptr<Precinct> &precinct, int layer, std::uint64_t *length, bool *isSound)
{
    const std::size_t ample = precinct->ampleHeader();
    for (std::uint64_t want = ample;; want *= 4) {
        if (CError error = walker.fetch(want))
            return error;
        const bool mayNeedMore = !walker.hasAll() && walker.available() < ample;
        std::unique_ptr<Precinct> copy;
        if (mayNeedMore || want > ample)
            copy = std::make_unique<Precinct>(*precinct);
        std::size_t headerLength = 0;
        std::uint64_t bodyLength = 0;
        const Precinct::Outcome outcome =
            precinct->parse(walker.bytes(), walker.available(), layer, &headerLength, &bodyLength);
        *length = headerLength + bodyLength;
        *isSound = outcome == Precinct::Outcome::Ok;
        if (outcome != Precinct::Outcome::NeedsMore || walker.hasAll() || !copy)
            return {};
        precinct = std::move(copy);
    }
}

/// Steps over the packet at the walker's position. \a isSound is false where the data end or contradict themselves;
/// \a place then has what there is.
CError stepOver(Walker &walker, PrecinctTable &precincts, std::uint32_t packet, int layers, PacketPlace *place,
                bool *isSound)
{
    *isSound = false;
    if (!walker.atPacket())
        return {};
    const int layer = static_cast<int>(packet % static_cast<std::uint32_t>(layers));
    std::unique_ptr<Precinct> &precinct = precincts.of(packet);
    std::uint64_t length = 0;
    CError error = parseHere(walker, precinct, layer, &length, isSound);
    if (error || !*isSound)
        return error;
    const std::uint64_t there = std::min(length, walker.left());
    *place = {walker.position, static_cast<std::uint32_t>(std::min<std::uint64_t>(there, 0xFFFFFFFFu))};
    *isSound = there == length;
    walker.position += there;
    if (layer == layers - 1) // its last packet: a large tile has more precincts than memory should hold at a time
        precinct.reset();
    return {};
}

} // namespace

bool isByResolution(const TileStyle &style)
{
    constexpr std::uint8_t kRlcp = 1, kRpcl = 2;
    return style.progressionChanges.empty() && (style.progression == kRlcp || style.progression == kRpcl);
}

CError walkPackets(ByteSource &source, const PacketWalkInput &tile, int resolution, const CancelFlag &cancel,
                   PacketWalk *walk)
{
    PacketWalk ahead = *walk;
    if (ahead.places.empty()) {
        ahead.places.assign(static_cast<std::size_t>(tile.numbering.count()), {});
        ahead.position = tile.data.empty() ? 0 : tile.data[0].offset;
    }
    Walker walker(source, tile, cancel, ahead);
    // Where a walk by resolution pauses, every precinct that was begun has all of its layers: no state is left behind.
    PrecinctTable precincts(tile);
    const bool mayPause = isByResolution(tile.style);
    const std::vector<std::uint32_t> order = packetOrder(tile.header, tile.style, tile.rect, tile.numbering);
    for (; ahead.next < order.size() && !ahead.isBroken; ++ahead.next) {
        const std::uint32_t packet = order[ahead.next];
        if (mayPause && precincts.resolution(packet) > resolution)
            break;
        bool isSound = false;
        if (CError error =
                stepOver(walker, precincts, packet, tile.numbering.layers(), &ahead.places[packet], &isSound))
            return error;
        ahead.isBroken = !isSound;
    }
    ahead.isFinished = ahead.isBroken || ahead.next == order.size();
    ahead.position = walker.position;
    ahead.part = walker.part;
    *walk = std::move(ahead);
    return {};
}

} // namespace xrv
