#pragma once

#include "tileindex.h"
#include "tileparttable.h"

#include <memory>
#include <vector>

namespace xrv {

/// Makes the index of a tile: reads the headers of its tile-parts and, without packet lengths there, follows the
/// packets as far as they are wanted.
class TileIndexReader
{
public:
    TileIndexReader(ByteSource &source, const MainHeader &header, std::uint32_t tile);
    /// Goes on where \a known ends.
    TileIndexReader(ByteSource &source, const MainHeader &header, const TileIndex &known);

    /// Reads the header of the tile's next tile-part, \a firstRead bytes (more than none) at first.
    PLK::CError readPart(const TilePart &part, std::uint64_t firstRead, const CancelFlag &cancel);
    /// After the last tile-part; a tile without any is missing.
    void finishHeaders(const CancelFlag &cancel);
    /// The same from header.packetIndex, for which nothing is read; \a codestream is its place in the file.
    void useIndex(ByteRange codestream);
    /// Finds the packets of resolutions up to \a resolution where the index does not know them. \a atHand: of each
    /// tile-part, bytes that cost little to read.
    PLK::CError walk(int resolution, const std::vector<ByteRange> &atHand, const CancelFlag &cancel);

    const std::shared_ptr<TileIndex> &index() const { return made; }

private:
    PLK::CError readPartHeader(const TilePart &part, std::uint64_t firstRead, const CancelFlag &cancel,
                               std::vector<MarkerSegment> *segments, std::size_t *position, bool *isComplete);
    PLK::CError applySegment(MarkerSegment &segment, std::vector<MarkerSegment> *plt, std::vector<MarkerSegment> *ppt);
    void applyQuantization(const MarkerSegment &segment);
    void placePackets(const CancelFlag &cancel);
    bool lengthsAddUp() const;

    ByteSource &source;
    const MainHeader &header;
    std::uint32_t tile = 0;
    std::shared_ptr<TileIndex> made = std::make_shared<TileIndex>();
    std::vector<bool> cocSet, qccSet;
    bool hasOwnProgression = false;
    std::vector<std::vector<std::uint32_t>> lengths; ///< of the packets, per tile-part
};

} // namespace xrv
