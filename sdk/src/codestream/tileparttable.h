#pragma once

#include "mainheader.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
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
/// walking from one tile-part to the next, no further than each question needs. What a walk finds of a distant file is
/// remembered for the next visit. Any thread.
class TilePartTable
{
public:
    TilePartTable(std::shared_ptr<ByteSource> source, ByteRange codestream, const MainHeader &header);

    /// The tile-parts of \a tile in codestream order; none when they are missing. A walk reads \a readAhead bytes of
    /// each tile-part on its way, which a distant source then has at hand.
    PLK::CError find(std::uint32_t tile, std::uint64_t readAhead, const CancelFlag &cancel,
                     std::vector<TilePart> *parts);
    /// What find() gives of a distant codestream with TLM marker segments, or with what its publisher put beside it,
    /// goes by that alone until this range has been looked at; empty when there is nothing to confirm.
    ByteRange toConfirm() const;
    /// Looks at it. False when that was found to be wrong since \a asOf, which build() gave before the
    /// first find(): what that gave does not hold.
    bool confirm(int asOf, const CancelFlag &cancel);
    int build() const;
    /// A sentence about damage that the walk has met, empty without.
    std::string damage() const;

private:
    struct PartsOfTile
    {
        std::vector<TilePart> parts;
        std::uint8_t announced = 0; ///< TNsot, 0 when it is not known yet
    };

    void start(const CancelFlag &cancel);
    bool buildFromTlm();
    bool isLastRight(const CancelFlag &cancel);
    bool appendFromTlm(const MarkerSegment &segment);
    void clear();
    void append(std::uint32_t tile, std::uint64_t length);
    bool isSettled(std::uint32_t tile) const;
    PLK::CError walkOn(std::uint64_t readAhead, const CancelFlag &cancel);
    PLK::CError readSot(std::uint64_t readAhead, const CancelFlag &cancel, Bytes *bytes);
    void appendWalked(std::uint16_t tile, std::uint32_t length, std::uint8_t partsOfTile);
    void endWalk(std::string damage);
    void recall();
    bool takeUp(const Bytes &known);
    void remember() const;

    std::shared_ptr<ByteSource> source;
    ByteRange codestream;
    const MainHeader &header;
    mutable std::mutex mutex; ///< guards what follows
    bool isStarted = false;
    bool isComplete = false;
    bool isUnconfirmed = false;
    bool isPublishedWrong = false;
    int builds = 0; ///< how often it was begun anew
    std::unordered_map<std::uint32_t, PartsOfTile> tiles;
    std::uint32_t lastTile = 0; ///< that of the tile-part found last
    std::uint32_t partCount = 0;
    std::uint64_t position = 0; ///< in the file, behind the tile-part found last
    std::uint64_t readEnd = 0;  ///< in the file, of what the walk has read
    Bytes window;               ///< of the file from windowStart on
    std::uint64_t windowStart = 0;
    Bytes walked; ///< what remember() keeps
    std::string damageText;
};

} // namespace xrv
