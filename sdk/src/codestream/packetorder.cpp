#include "packetorder.h"

#include <algorithm>
#include <tuple>

namespace xrv {

namespace {

enum Order { kLrcp, kRlcp, kRpcl, kPcrl, kCprl };

bool isByLayer(int order)
{
    return order == kLrcp || order == kRlcp;
}

} // namespace

PacketNumbering::PacketNumbering(const MainHeader &header, const TileStyle &style, const IntRect &tile)
    : layerCount(style.layers)
    , grids(style.components.size())
    , bases(style.components.size())
{
    for (std::size_t c = 0; c < style.components.size(); ++c) {
        const IntRect rect = componentRect(tile, header.components[c]);
        const auto resolutions = static_cast<std::size_t>(style.components[c].decompositionLevels) + 1;
        grids[c].reserve(resolutions);
        bases[c].reserve(resolutions);
        for (int r = 0; r <= style.components[c].decompositionLevels; ++r) {
            grids[c].push_back(precinctGrid(rect, style.components[c], r));
            bases[c].push_back(total);
            // Stays above the limit once it is there: absurd sizes must not wrap around it.
            const PrecinctGrid &grid = grids[c].back();
            const bool isAbsurd = grid.down > 0 && grid.across > std::int64_t(kMaxPackets) / grid.down;
            const std::uint64_t precincts = isAbsurd ? kMaxPackets + 1 : grid.count();
            total = std::min(total + precincts * layerCount, std::uint64_t(1) << 62);
        }
    }
}

PacketSequence::PacketSequence(const MainHeader &header, const TileStyle &style, const IntRect &tile,
                               const PacketNumbering &numbering, const CancelFlag &cancel)
    : header(header)
    , style(style)
    , tile(tile)
    , numbering(numbering)
    , cancel(cancel)
    , done(style.components.size())
{
    for (std::size_t c = 0; c < done.size(); ++c)
        done[c].assign(static_cast<std::size_t>(numbering.resolutions(static_cast<int>(c))), 0);
}

bool PacketSequence::next(PacketName *packet)
{
    for (;;) {
        if (groupBegin < groupEnd && (isByLayer(order) ? nextLayered(packet) : nextPlaced(packet)))
            return true;
        while (!nextGroup())
            if (!nextVolume())
                return false;
    }
}

/// Without changes, and after them for what they leave out, the packets come in the order of the coding style.
bool PacketSequence::nextVolume()
{
    if (cancel.isRaised() || volumesBegun > style.progressionChanges.size())
        return false;
    ProgressionChange rest;
    rest.resolutionEnd = 33; // there are at most 32 decomposition levels
    rest.componentEnd = static_cast<std::uint16_t>(style.components.size());
    rest.layerEnd = style.layers;
    rest.order = style.progression;
    const bool isRest = volumesBegun == style.progressionChanges.size();
    collectParts(isRest ? rest : style.progressionChanges[volumesBegun]);
    ++volumesBegun;
    return true;
}

/// Volumes of progression changes may overlap: a packet stands where it comes first (B.12.2). A volume has all
/// precincts of a resolution, so that it is enough to know for each of these how many layers have come.
void PacketSequence::collectParts(const ProgressionChange &volume)
{
    order = volume.order;
    layerEnd = std::min<int>(volume.layerEnd, style.layers);
    parts.clear();
    const int components = std::min<int>(volume.componentEnd, static_cast<int>(style.components.size()));
    for (int c = volume.componentStart; c < components; ++c) {
        for (int r = volume.resolutionStart; r < std::min<int>(volume.resolutionEnd, numbering.resolutions(c)); ++r) {
            int &layers = done[c][r];
            if (layers >= layerEnd || numbering.grid(c, r).count() == 0)
                continue;
            parts.push_back({c, r, layers});
            layers = layerEnd;
        }
    }
    if (order != kCprl)
        std::sort(parts.begin(), parts.end(), [](const Part &a, const Part &b) {
            return std::tie(a.resolution, a.component) < std::tie(b.resolution, b.component);
        });
    groupBegin = groupEnd = 0;
}

bool PacketSequence::isOneGroup(const Part &a, const Part &b) const
{
    if (order == kLrcp || order == kPcrl)
        return true;
    return order == kCprl ? a.component == b.component : a.resolution == b.resolution;
}

bool PacketSequence::nextGroup()
{
    groupBegin = groupEnd;
    while (groupEnd < parts.size() && isOneGroup(parts[groupBegin], parts[groupEnd]))
        ++groupEnd;
    pending.clear();
    inLayer.clear();
    cursors.clear();
    for (std::size_t part = groupBegin; part < groupEnd; ++part) {
        if (isByLayer(order))
            pending.push_back(part);
        else
            cursors.push_back(cursorAt(part, 0));
    }
    std::sort(pending.begin(), pending.end(),
              [this](std::size_t a, std::size_t b) { return parts[a].firstLayer > parts[b].firstLayer; });
    std::make_heap(cursors.begin(), cursors.end(),
                   [this](const Cursor &a, const Cursor &b) { return comesLater(a, b); });
    layer = placedLayer = -1;
    partAt = 0;
    return groupBegin < groupEnd;
}

/// B.12.1.1 and B.12.1.2.
bool PacketSequence::nextLayered(PacketName *packet)
{
    if (partAt == inLayer.size() && !startLayer())
        return false;
    const Part &part = parts[inLayer[partAt]];
    *packet = {part.component, part.resolution, layer, precinctAt};
    if (++precinctAt == precinctsOf(part)) {
        precinctAt = 0;
        ++partAt;
    }
    return true;
}

bool PacketSequence::startLayer()
{
    layer = inLayer.empty() ? parts[pending.back()].firstLayer : layer + 1;
    if (layer == layerEnd)
        return false;
    const std::size_t before = inLayer.size();
    for (; !pending.empty() && parts[pending.back()].firstLayer == layer; pending.pop_back())
        inLayer.push_back(pending.back());
    if (inLayer.size() > before)
        std::sort(inLayer.begin(), inLayer.end());
    partAt = 0;
    precinctAt = 0;
    return true;
}

/// B.12.1.3 to B.12.1.5. The standard has them go over every cell of the tile and asks at each which precincts begin
/// there. It comes to the same to merge the precincts of all parts, which lie in that order within each.
bool PacketSequence::nextPlaced(PacketName *packet)
{
    if (cursors.empty())
        return false;
    const Part &part = parts[cursors.front().part];
    placedLayer = placedLayer < 0 ? part.firstLayer : placedLayer + 1;
    *packet = {part.component, part.resolution, placedLayer, cursors.front().precinct};
    if (placedLayer + 1 == layerEnd) {
        placedLayer = -1;
        moveTopCursor();
    }
    return true;
}

void PacketSequence::moveTopCursor()
{
    const auto later = [this](const Cursor &a, const Cursor &b) { return comesLater(a, b); };
    std::pop_heap(cursors.begin(), cursors.end(), later);
    const Cursor last = cursors.back();
    cursors.pop_back();
    if (last.precinct + 1 == precinctsOf(parts[last.part]))
        return;
    cursors.push_back(cursorAt(last.part, last.precinct + 1));
    std::push_heap(cursors.begin(), cursors.end(), later);
}

/// At the same place components come in turn, and of each the resolutions.
bool PacketSequence::comesLater(const Cursor &a, const Cursor &b) const
{
    const Part &first = parts[a.part], &second = parts[b.part];
    return std::tie(a.y, a.x, first.component, first.resolution) >
           std::tie(b.y, b.x, second.component, second.resolution);
}

/// A precinct that begins before the tile does, as the first of a row or column may, is met at the tile's edge.
PacketSequence::Cursor PacketSequence::cursorAt(std::size_t number, std::int64_t precinct) const
{
    const Part &part = parts[number];
    const PrecinctGrid &grid = numbering.grid(part.component, part.resolution);
    const int shift = style.components[part.component].decompositionLevels - part.resolution;
    const auto position = [shift](std::int64_t index, int exponent, std::int64_t resolutionStart,
                                  std::int64_t tileStart, std::int64_t step) {
        const std::int64_t start = index << exponent;
        return start < resolutionStart ? tileStart : (start << shift) * step;
    };
    const std::int64_t px = grid.firstX + precinct % grid.across, py = grid.firstY + precinct / grid.across;
    const MainHeader::Component &component = header.components[part.component];
    return {position(py, grid.heightExponent, grid.resolutionRect.y0, tile.y0, component.stepY),
            position(px, grid.widthExponent, grid.resolutionRect.x0, tile.x0, component.stepX), number, precinct};
}

} // namespace xrv
