#pragma once

#include "packetorder.h"
#include "tileparttable.h"

#include <memory>
#include <optional>
#include <vector>

namespace xrv {

/// What is known of one tile of a codestream: its coding style, the bytes of its tile-parts and, where they can be
/// told, the place of every packet. Immutable.
class TileIndex
{
public:
    /// Quantization of one component (A.6.4, A.6.5) and its region of interest (A.6.3).
    struct Quantization
    {
        Bytes parameters;       ///< Sqcd and SPqcd
        Bytes regionOfInterest; ///< Srgn and SPrgn, empty without
    };
    /// A packet's bytes in the file; length 0 for one that is not there.
    struct PacketPlace
    {
        std::uint64_t offset = 0;
        std::uint32_t length = 0;
    };

    /// Reads the tile-part headers of \a tile.
    static PLK::CError read(ByteSource &source, const MainHeader &header, TilePartTable &table, std::uint32_t tile,
                            std::shared_ptr<const TileIndex> *index);

    const IntRect &rect() const { return canvasRect; }
    const TileStyle &style() const { return tileStyle; }
    const PacketNumbering &packets() const { return *numbering; }
    const std::vector<Quantization> &quantization() const { return quantizations; }

    /// Packets can be asked for one by one.
    bool hasPacketPlaces() const { return !places.empty(); }
    const PacketPlace &place(std::uint32_t packet) const { return places[packet]; }

    /// Bytes of the tile-parts after their headers.
    const std::vector<ByteRange> &data() const { return dataRanges; }
    /// Marker segments of the tile-part headers that decoding needs.
    const std::vector<MarkerSegment> &segments() const { return tileSegments; }
    /// Packet headers packed into PPM or PPT marker segments (A.7.4, A.7.5), in order; empty without.
    const Bytes &packedHeaders() const { return packed; }
    bool hasPackedHeaders() const { return isPacked; }

    bool isTruncated() const { return truncated; }
    /// No tile-part of this tile was found.
    bool isMissing() const { return dataRanges.empty(); }
    std::size_t memoryUse() const { return sizeof(*this) + places.size() * sizeof(PacketPlace) + packed.size(); }

private:
    friend class TileIndexReader;

    IntRect canvasRect;
    TileStyle tileStyle;
    std::optional<PacketNumbering> numbering;
    std::vector<Quantization> quantizations;
    std::vector<PacketPlace> places;
    std::vector<ByteRange> dataRanges;
    std::vector<MarkerSegment> tileSegments;
    Bytes packed;
    bool isPacked = false;
    bool truncated = false;
};

} // namespace xrv
