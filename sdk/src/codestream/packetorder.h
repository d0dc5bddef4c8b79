#pragma once

#include "canvas.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Numbers the packets of a tile: by component, resolution, precinct and layer, whatever their order in the codestream.
class PacketNumbering
{
public:
    /// \a tile: the tile's rectangle on the canvas.
    PacketNumbering(const MainHeader &header, const TileStyle &style, const IntRect &tile);

    std::uint64_t count() const { return total; }
    int layers() const { return layerCount; }
    int resolutions(int component) const { return static_cast<int>(grids[component].size()); }
    const PrecinctGrid &grid(int component, int resolution) const { return grids[component][resolution]; }
    std::uint32_t number(int component, int resolution, std::int64_t precinct, int layer) const
    {
        return static_cast<std::uint32_t>(bases[component][resolution] + precinct * layerCount + layer);
    }

private:
    int layerCount;
    std::uint64_t total = 0;
    std::vector<std::vector<PrecinctGrid>> grids;
    std::vector<std::vector<std::uint64_t>> bases;
};

/// Most packets of one tile that are dealt with one by one.
constexpr std::uint64_t kMaxPackets = 16u << 20;

/// Numbers of all packets of a tile in the order of the codestream (ISO/IEC 15444-1 B.12). Only for tiles of up to
/// kMaxPackets packets.
std::vector<std::uint32_t> packetOrder(const MainHeader &header, const TileStyle &style, const IntRect &tile,
                                       const PacketNumbering &numbering);

} // namespace xrv
