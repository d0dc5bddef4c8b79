#pragma once

#include "mainheader.h"

#include <cstdint>
#include <mutex>
#include <vector>

namespace xrv {

/// One tile-part (ISO/IEC 15444-1 A.4.2).
struct TilePart
{
    ByteRange range;            ///< in the file, from its SOT marker on, clipped to what there is
    std::uint32_t sequence = 0; ///< number in the codestream, which packed packet headers go by
    bool isTruncated = false;   ///< claims more bytes than there are
};

/// Where the tile-parts of a codestream lie: from the TLM marker segments where there are any and they hold, else by
/// walking from one tile-part to the next. Made at the first question. Any thread.
class TilePartTable
{
public:
    TilePartTable(std::shared_ptr<ByteSource> source, ByteRange codestream, const MainHeader &header);

    /// The tile-parts of \a tile in codestream order; none when they are missing.
    PLK::CError find(std::uint32_t tile, std::vector<TilePart> *parts);
    /// A sentence about damage that the walk has met, empty without.
    std::string damage() const;

private:
    struct Entry
    {
        std::uint32_t tile;
        TilePart part;
    };
    PLK::CError build();
    bool buildFromTlm();
    PLK::CError buildByWalking();
    void append(std::uint32_t tile, std::uint64_t offset, std::uint64_t length);
    void sortByTile();

    std::shared_ptr<ByteSource> source;
    ByteRange codestream;
    const MainHeader &header;
    mutable std::mutex mutex; ///< guards what follows
    bool isBuilt = false;
    std::vector<Entry> entries; ///< sorted by tile, each tile's in codestream order
    std::string damageText;
};

} // namespace xrv
