#pragma once

#include "canvas.h"

#include "base/cancelflag.h"

#include <cstdint>
#include <limits>
#include <vector>

namespace xrv {

/// Most packets of one tile that can be told from each other.
constexpr std::uint64_t kMaxPackets = std::numeric_limits<std::uint32_t>::max();

/// Numbers the packets of a tile: by component, resolution, precinct and layer, whatever their order in the codestream.
class PacketNumbering
{
public:
    /// \a tile: the tile's rectangle on the canvas.
    PacketNumbering(const MainHeader &header, const TileStyle &style, const IntRect &tile);

    /// Where it is more than kMaxPackets it is a lower bound, and packets have no numbers.
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

/// A packet by its place in the image.
struct PacketName
{
    int component = 0, resolution = 0, layer = 0;
    std::int64_t precinct = 0;
};

/// Gives the packets of a tile one after the other in the order of the codestream (ISO/IEC 15444-1 B.12). They are
/// worked out one by one: what it takes hangs on how many are asked for, not on how many the header claims.
class PacketSequence
{
public:
    /// All arguments must outlive it.
    PacketSequence(const MainHeader &header, const TileStyle &style, const IntRect &tile,
                   const PacketNumbering &numbering, const CancelFlag &cancel);

    /// False after the last packet, and once the flag is raised.
    bool next(PacketName *packet);

private:
    /// Precincts of one resolution of a component in the present volume: all of them have the same layers to come.
    struct Part
    {
        int component, resolution;
        int firstLayer; ///< those before it came with earlier volumes
    };
    /// The next precinct of a part, and the place on the canvas where it is met.
    struct Cursor
    {
        std::int64_t y, x;
        std::size_t part;
        std::int64_t precinct;
    };

    bool nextVolume();
    void collectParts(const ProgressionChange &volume);
    bool nextGroup();
    bool nextLayered(PacketName *packet);
    bool startLayer();
    bool nextPlaced(PacketName *packet);
    bool isOneGroup(const Part &a, const Part &b) const;
    bool comesLater(const Cursor &a, const Cursor &b) const;
    Cursor cursorAt(std::size_t part, std::int64_t precinct) const;
    void moveTopCursor();
    std::int64_t precinctsOf(const Part &part) const { return numbering.grid(part.component, part.resolution).count(); }

    const MainHeader &header;
    const TileStyle &style;
    const IntRect tile;
    const PacketNumbering &numbering;
    const CancelFlag &cancel;

    std::vector<std::vector<int>> done; ///< layers that earlier volumes had, by component and resolution
    std::size_t volumesBegun = 0;
    int order = 0, layerEnd = 0;              ///< of the volume
    std::vector<Part> parts;                  ///< of the volume, those of a group beside each other
    std::size_t groupBegin = 0, groupEnd = 0; ///< parts whose packets are interleaved

    // Of a group in which layers come first.
    int layer = 0;
    std::vector<std::size_t> pending, inLayer; ///< parts, by falling first layer, and in order of the codestream
    std::size_t partAt = 0;
    std::int64_t precinctAt = 0;

    std::vector<Cursor> cursors; ///< of a group in which places come first: a heap
    int placedLayer = -1;        ///< of the first cursor; -1 before its first layer
};

} // namespace xrv
