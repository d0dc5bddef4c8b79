#pragma once

#include "base/bytes.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xrv {

/// Where every tile-part and every packet of a codestream lies, told apart from the codestream itself: the tile-parts
/// follow each other from the end of the main header on, in each its header and then its packets.
class PacketIndex
{
public:
    struct Part
    {
        std::uint32_t tile = 0;
        std::uint64_t offset = 0;       ///< from the end of the main header
        std::uint32_t headerLength = 0; ///< bytes from the SOT marker to the first packet
        std::uint32_t firstPacket = 0;  ///< place of its packets' lengths
        std::uint32_t packets = 0;
    };

    /// Adds a tile-part behind the last one.
    void append(std::uint32_t tile, std::uint32_t headerLength, const std::vector<std::uint32_t> &packetLengths);

    /// In the order of the codestream.
    const std::vector<Part> &parts() const { return allParts; }
    std::uint32_t packetLength(std::uint32_t packet) const { return lengths[packet]; }
    /// Bytes of a tile-part with its header.
    std::uint64_t length(const Part &part) const;
    /// Bytes of all tile-parts.
    std::uint64_t totalLength() const { return total; }
    /// The tile-parts of \a tile in the order of the codestream. Only of an index that was parsed.
    std::vector<Part> partsOf(std::uint32_t tile) const;

    /// The content of the box that holds the index (docs/xrv-format.md, box 'pidx').
    Bytes content() const;
    /// Null where the content is damaged, or is not that of a codestream of \a tiles tiles with \a bytes bytes in its
    /// tile-parts.
    static std::shared_ptr<const PacketIndex> parse(const Bytes &content, std::uint32_t tiles, std::uint64_t bytes);

private:
    void sortByTile();

    std::uint64_t total = 0;
    std::vector<std::uint32_t> byTile; ///< numbers of tile-parts
    std::vector<Part> allParts;
    std::vector<std::uint32_t> lengths;
};

} // namespace xrv
