#pragma once

#include "packetorder.h"

namespace xrv {

/// A packet's bytes in the file; length 0 for one that is not there.
struct PacketPlace
{
    std::uint64_t offset = 0;
    std::uint32_t length = 0;
    std::uint32_t packet = 0; ///< its number
};

/// Where packets lie, for those that are there only: a header may claim any number of them.
class PacketPlaces
{
public:
    PacketPlace of(std::uint32_t packet) const;
    /// In any order; sort() has to follow before the next question.
    void add(const PacketPlace &place) { places.push_back(place); }
    void sort();
    std::size_t memoryUse() const { return places.capacity() * sizeof(PacketPlace); }

private:
    std::vector<PacketPlace> places; ///< by number
};

/// How far the packets of a tile without packet lengths have been followed, one packet header after the other.
struct PacketWalk
{
    PacketPlaces places;            ///< packets that are not there, or not reached, have length 0
    PacketPlaces headers;           ///< where they are packed: their places among these; places are those of the bodies
    std::size_t packedPosition = 0; ///< behind the packed headers that were parsed
    std::uint64_t next = 0;         ///< number in the codestream's order of the packet to come
    std::uint64_t position = 0;     ///< in the file, of that packet
    std::size_t part = 0;           ///< its tile-part
    bool isBegun = false;
    bool isFinished = false; ///< nothing is left to be found
    bool isBroken = false;   ///< the data end early or contradict themselves; what came before stands
};

/// The tile that is walked through.
struct PacketWalkInput
{
    const MainHeader &header;
    const TileStyle &style;
    const IntRect &rect; ///< on the canvas
    const PacketNumbering &numbering;
    const std::vector<ByteRange> &data;   ///< packets of each tile-part
    const std::vector<ByteRange> &atHand; ///< of these, bytes that cost little to read
    const Bytes *packedHeaders = nullptr; ///< of all its packets (A.7.4, A.7.5); null where each stands in its packet
};

/// Walks on until the packets of all resolutions up to \a resolution are found, or all packets where the codestream
/// does not have them in order of resolution. Fails only when \a source fails, \a cancel is raised or the packet
/// headers take more memory than their bytes are worth (PLK_ERR_UNSUPPORTED); \a walk then stands where it was.
PLK::CError walkPackets(ByteSource &source, const PacketWalkInput &tile, int resolution, const CancelFlag &cancel,
                        PacketWalk *walk);

/// The packets come in order of resolution, so that a walk to the low ones is short (A.6.1: RLCP, RPCL).
bool isByResolution(const TileStyle &style);

} // namespace xrv
