#include "packetorder.h"

#include <algorithm>
#include <tuple>

namespace xrv {

namespace {

/// A precinct with its place on the canvas, by which the position progressions go (B.12.1.3 to B.12.1.5). The standard
/// has them go over every cell of the tile and asks at each which precincts begin there. It comes to the same, and is
/// quick, to sort the precincts by the cell where they begin.
struct PlacedPrecinct
{
    std::int64_t y, x;
    int component, resolution;
    std::int64_t precinct;
};

class OrderBuilder
{
public:
    OrderBuilder(const MainHeader &header, const TileStyle &style, const IntRect &tile,
                 const PacketNumbering &numbering)
        : header(header)
        , style(style)
        , tile(tile)
        , numbering(numbering)
        , emitted(static_cast<std::size_t>(numbering.count()), false)
    {
        order.reserve(static_cast<std::size_t>(numbering.count()));
    }

    std::vector<std::uint32_t> build()
    {
        for (const ProgressionChange &change : style.progressionChanges)
            addVolume(change);
        // Without changes, and after them for what they leave out.
        if (order.size() < numbering.count()) {
            ProgressionChange rest;
            rest.resolutionEnd = 33; // there are at most 32 decomposition levels
            rest.componentEnd = static_cast<std::uint16_t>(style.components.size());
            rest.layerEnd = style.layers;
            rest.order = style.progression;
            addVolume(rest);
        }
        return std::move(order);
    }

private:
    /// Volumes of progression changes may overlap: a packet stands where it comes first (B.12.2).
    void emit(int component, int resolution, std::int64_t precinct, int layer)
    {
        const std::uint32_t number = numbering.number(component, resolution, precinct, layer);
        if (emitted[number])
            return;
        emitted[number] = true;
        order.push_back(number);
    }

    void clip(const ProgressionChange &change)
    {
        components = {change.componentStart, std::min<int>(change.componentEnd, int(style.components.size()))};
        resolutions = {change.resolutionStart, std::min<int>(change.resolutionEnd, style.maxDecompositionLevels() + 1)};
        layerEnd = std::min<int>(change.layerEnd, style.layers);
    }

    void addVolume(const ProgressionChange &change)
    {
        clip(change);
        switch (change.order) {
        case 0: // LRCP, B.12.1.1
            for (int l = 0; l < layerEnd; ++l)
                for (int r = resolutions.first; r < resolutions.second; ++r)
                    addLayerOfResolution(r, l);
            break;
        case 1: // RLCP, B.12.1.2
            for (int r = resolutions.first; r < resolutions.second; ++r)
                for (int l = 0; l < layerEnd; ++l)
                    addLayerOfResolution(r, l);
            break;
        case 2: // RPCL, B.12.1.3
            addPlaced([](const PlacedPrecinct &p) {
                return std::make_tuple(std::int64_t(p.resolution), p.y, p.x, std::int64_t(p.component), p.precinct);
            });
            break;
        case 3: // PCRL, B.12.1.4
            addPlaced([](const PlacedPrecinct &p) {
                return std::make_tuple(p.y, p.x, std::int64_t(p.component), std::int64_t(p.resolution), p.precinct);
            });
            break;
        default: // CPRL, B.12.1.5
            addPlaced([](const PlacedPrecinct &p) {
                return std::make_tuple(std::int64_t(p.component), p.y, p.x, std::int64_t(p.resolution), p.precinct);
            });
            break;
        }
    }

    void addLayerOfResolution(int resolution, int layer)
    {
        for (int c = components.first; c < components.second; ++c) {
            if (resolution >= numbering.resolutions(c))
                continue;
            const std::int64_t count = numbering.grid(c, resolution).count();
            for (std::int64_t p = 0; p < count; ++p)
                emit(c, resolution, p, layer);
        }
    }

    template <typename Key> void addPlaced(Key key)
    {
        std::vector<PlacedPrecinct> placed;
        for (int c = components.first; c < components.second; ++c)
            for (int r = resolutions.first; r < std::min(resolutions.second, numbering.resolutions(c)); ++r)
                place(c, r, &placed);
        std::sort(placed.begin(), placed.end(),
                  [&key](const PlacedPrecinct &a, const PlacedPrecinct &b) { return key(a) < key(b); });
        for (const PlacedPrecinct &p : placed)
            for (int l = 0; l < layerEnd; ++l)
                emit(p.component, p.resolution, p.precinct, l);
    }

    /// A precinct that begins before the tile does, as the first of a row or column may, is met at the tile's edge.
    void place(int c, int r, std::vector<PlacedPrecinct> *placed) const
    {
        const PrecinctGrid &grid = numbering.grid(c, r);
        const int shift = style.components[c].decompositionLevels - r;
        const auto position = [shift](std::int64_t index, int exponent, std::int64_t resolutionStart,
                                      std::int64_t tileStart, std::int64_t step) {
            const std::int64_t start = index << exponent;
            return start < resolutionStart ? tileStart : (start << shift) * step;
        };
        for (std::int64_t p = 0; p < grid.count(); ++p) {
            const std::int64_t px = grid.firstX + p % grid.across, py = grid.firstY + p / grid.across;
            placed->push_back(
                {position(py, grid.heightExponent, grid.resolutionRect.y0, tile.y0, header.components[c].stepY),
                 position(px, grid.widthExponent, grid.resolutionRect.x0, tile.x0, header.components[c].stepX), c, r,
                 p});
        }
    }

    const MainHeader &header;
    const TileStyle &style;
    const IntRect tile;
    const PacketNumbering &numbering;
    std::vector<bool> emitted;
    std::vector<std::uint32_t> order;
    std::pair<int, int> components, resolutions;
    int layerEnd = 0;
};

} // namespace

PacketNumbering::PacketNumbering(const MainHeader &header, const TileStyle &style, const IntRect &tile)
    : layerCount(style.layers)
    , grids(style.components.size())
    , bases(style.components.size())
{
    for (std::size_t c = 0; c < style.components.size(); ++c) {
        const IntRect rect = componentRect(tile, header.components[c]);
        for (int r = 0; r <= style.components[c].decompositionLevels; ++r) {
            grids[c].push_back(precinctGrid(rect, style.components[c], r));
            bases[c].push_back(total);
            // Stays above the limit once it is there: absurd sizes must not wrap around it.
            const std::uint64_t precincts = std::min<std::uint64_t>(grids[c].back().count(), kMaxPackets);
            total = std::min(total + precincts * layerCount, kMaxPackets * 0x10000);
        }
    }
}

std::vector<std::uint32_t> packetOrder(const MainHeader &header, const TileStyle &style, const IntRect &tile,
                                       const PacketNumbering &numbering)
{
    return OrderBuilder(header, style, tile, numbering).build();
}

} // namespace xrv
