#include "packetwalk.h"

#include "precinct.h"

#include <algorithm>
#include <memory>
#include <optional>

using PLK::CError;

namespace xrv {

namespace {

/// Bytes read ahead at a time.
constexpr std::uint64_t kWindow = 256 * 1024;

/// Goes through the bytes of the tile-parts; packets never reach from one into the next.
class Walker
{
public:
    Walker(ByteSource &source, const std::vector<ByteRange> &data)
        : source(source)
        , data(data)
    {
        if (!data.empty())
            position = data[0].offset;
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
        return source.read(ByteRange{position, std::min(std::max(count, kWindow), data[part].end() - position)},
                           &window);
    }
    const std::uint8_t *bytes() const { return window.data() + (position - windowStart); }
    std::size_t available() const
    {
        return static_cast<std::size_t>(std::min(windowStart + window.size(), data[part].end()) - position);
    }
    std::uint64_t left() const { return data[part].end() - position; }
    bool hasAll() const { return available() == left(); }

    std::uint64_t position = 0;

private:
    ByteSource &source;
    const std::vector<ByteRange> &data;
    std::size_t part = 0;
    Bytes window;
    std::uint64_t windowStart = 0;
};

/// The precincts of a tile while their packets go by.
class PrecinctTable
{
public:
    PrecinctTable(const MainHeader &header, const TileStyle &style, const IntRect &tile,
                  const PacketNumbering &numbering)
        : numbering(numbering)
        , style(style)
    {
        for (std::size_t c = 0; c < style.components.size(); ++c) {
            rects.push_back(componentRect(tile, header.components[c]));
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
        // The last resolution that begins at or before the packet; empty ones begin where the next does.
        auto first = std::upper_bound(firsts.begin(), firsts.end(), packet,
                                      [](std::uint32_t number, const First &f) { return number < f.packet; });
        --first;
        const std::int64_t index = (packet - first->packet) / numbering.layers();
        precinct = std::make_unique<Precinct>(rects[first->component], style.components[first->component],
                                              numbering.grid(first->component, first->resolution), first->resolution,
                                              index, style.usesEph());
        return precinct;
    }

private:
    struct First
    {
        std::uint32_t packet;
        int component, resolution;
    };
    const PacketNumbering &numbering;
    const TileStyle &style;
    std::vector<IntRect> rects;
    std::vector<First> firsts;
    std::vector<std::unique_ptr<Precinct>> precincts;
};

/// Parses one packet's header at the walker's position.
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

} // namespace

CError walkPackets(ByteSource &source, const MainHeader &header, const TileStyle &style, const IntRect &tile,
                   const PacketNumbering &numbering, const std::vector<ByteRange> &data,
                   std::vector<TileIndex::PacketPlace> *places, bool *isComplete)
{
    places->assign(static_cast<std::size_t>(numbering.count()), {});
    *isComplete = false;
    Walker walker(source, data);
    PrecinctTable precincts(header, style, tile, numbering);
    const int lastLayer = numbering.layers() - 1;
    for (const std::uint32_t packet : packetOrder(header, style, tile, numbering)) {
        if (!walker.atPacket())
            return {};
        const int layer = static_cast<int>(packet % numbering.layers());
        std::unique_ptr<Precinct> &precinct = precincts.of(packet);
        std::uint64_t length = 0;
        bool isSound = false;
        if (CError error = parseHere(walker, precinct, layer, &length, &isSound))
            return error;
        if (!isSound)
            return {};
        const std::uint64_t there = std::min(length, walker.left());
        (*places)[packet] = {walker.position, static_cast<std::uint32_t>(std::min<std::uint64_t>(there, 0xFFFFFFFFu))};
        if (there < length)
            return {};
        walker.position += length;
        if (layer == lastLayer)
            precinct.reset();
    }
    *isComplete = true;
    return {};
}

} // namespace xrv
