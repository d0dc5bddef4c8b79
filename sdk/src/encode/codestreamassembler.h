#pragma once

#include "outputfile.h"
#include "tilecoding.h"

#include "codestream/packetindex.h"

#include <functional>
#include <vector>

namespace xrv {

/// Puts a codestream together from tiles that come one by one and in any order. The tiles' packets wait in a file until
/// all are there; then they are written by resolution: the lowest one of all tiles first, then the next one of all
/// tiles, each in a tile-part of its own. So every overview of the image is one range of bytes at its beginning.
class CodestreamAssembler
{
public:
    struct Layout
    {
        std::uint32_t width = 0, height = 0; ///< of the image
        std::uint32_t tileWidth = 0, tileHeight = 0;
        std::vector<XrvBand> bands;
        std::uint32_t tileCount() const;
    };

    explicit CodestreamAssembler(Layout layout);

    /// The waiting packets go beside \a path (UTF-8) under a name of their own, for as long as this object lives.
    PLK::CError open(const std::string &path);
    PLK::CError add(std::uint32_t tile, const EncodedTile &encoded);
    /// After all tiles: makes the headers. PLK_ERR_UNSUPPORTED where a tile-part has 4 GiB or more.
    PLK::CError finish();

    /// After finish().
    std::uint64_t length() const { return totalLength; }
    const PacketIndex &index() const { return packetIndex; }
    /// The headers of the tile-parts say nothing but what the index says.
    bool isIndexComplete() const;
    /// Calls \a progress with the share that is written, 0 to 1; it ends the work by returning false.
    PLK::CError write(OutputFile *output, const std::function<bool(double)> &progress);

private:
    struct Part
    {
        ByteRange packets; ///< in the spool
        std::vector<std::uint32_t> lengths;
        Bytes header;
    };
    struct Tile
    {
        std::vector<MarkerSegment> segments; ///< where they differ from those of the image
        std::vector<Part> parts;
    };
    template <typename Visitor> PLK::CError visitParts(Visitor visit);
    Bytes partHeader(std::uint32_t tile, std::size_t resolution) const;
    Bytes mainHeader() const;
    void appendTlm(Bytes *bytes) const;

    const Layout layout;
    OutputFile spool;
    std::vector<Tile> tiles;
    std::vector<MarkerSegment> imageSegments;
    std::uint16_t capabilities = 0;
    PacketIndex packetIndex;
    Bytes header;
    std::uint64_t totalLength = 0;
};

} // namespace xrv
