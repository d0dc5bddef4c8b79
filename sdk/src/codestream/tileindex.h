#pragma once

#include "packetwalk.h"

#include <optional>
#include <vector>

namespace xrv {

/// What is known of one tile of a codestream: its coding style, the bytes of its tile-parts and, where they can be
/// told, the places of its packets. Made by TileIndexReader; immutable.
class TileIndex
{
public:
    /// Quantization of one component (A.6.4, A.6.5) and its region of interest (A.6.3).
    struct Quantization
    {
        Bytes parameters;       ///< Sqcd and SPqcd
        Bytes regionOfInterest; ///< Srgn and SPrgn, empty without
    };
    const IntRect &rect() const { return canvasRect; }
    const TileStyle &style() const { return tileStyle; }
    const PacketNumbering &packets() const { return *numbering; }
    const std::vector<Quantization> &quantization() const { return quantizations; }

    /// Packets can be asked for one by one.
    bool hasPacketPlaces() const { return walk.isBegun; }
    /// The places of the packets of resolutions up to \a resolution are known, as far as they will ever be.
    bool knowsPlaces(int resolution) const { return !isWalkable || walk.isFinished || resolution <= walkedResolution; }
    PacketPlace place(std::uint32_t packet) const { return walk.places.of(packet); }
    /// Packet headers are packed into PPM or PPT marker segments (A.7.4, A.7.5); places are those of the bodies then.
    bool hasPackedHeaders() const { return isPacked; }
    /// Such a header with those that follow it; length 0 when it is not there.
    std::pair<const std::uint8_t *, std::size_t> packedHeader(std::uint32_t packet) const
    {
        const PacketPlace place = walk.headers.of(packet);
        return {packed.data() + place.offset, place.length > 0 ? packed.size() - place.offset : 0};
    }

    /// Bytes of the tile-parts after their headers.
    const std::vector<ByteRange> &data() const { return dataRanges; }

    bool isTruncated() const { return truncated || walk.isBroken; }
    /// No tile-part of this tile was found.
    bool isMissing() const { return dataRanges.empty(); }
    std::size_t memoryUse() const
    {
        return sizeof(*this) + walk.places.memoryUse() + walk.headers.memoryUse() + packed.size();
    }

private:
    friend class TileIndexReader;

    IntRect canvasRect;
    TileStyle tileStyle;
    std::optional<PacketNumbering> numbering;
    std::vector<Quantization> quantizations;
    PacketWalk walk;           ///< finished where packet lengths give the places
    int walkedResolution = -1; ///< of a walk that is not finished
    std::vector<ByteRange> dataRanges;
    Bytes packed;
    bool isPacked = false;
    bool isWalkable = false; ///< packet headers can be followed
    bool truncated = false;
};

} // namespace xrv
