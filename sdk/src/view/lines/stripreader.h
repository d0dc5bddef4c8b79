#pragma once

#include "readplan.h"
#include "viewrequest.h"

#include "decode/rasterreader.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace xrv {

/// Decoded cells of some lines of a view. Immutable once made.
struct Strip
{
    CellKey key;
    int fromLine = 0, toLine = 0;
    std::uint64_t cacheTilesInView = 0; ///< of the whole view
    ReadResult cells;
    bool isWhole() const { return fromLine == 0 && toLine == key.height; }
};
using StripPtr = std::shared_ptr<const Strip>;

/// Reads a view strip by strip, so that memory follows the strip and not the view. Usual views are one strip.
class StripReader
{
public:
    /// A strip's cells stay below this, but for a strip of a single line.
    static constexpr std::size_t kStripBytes = std::size_t(32) << 20;

    /// Strips begin at multiples of \a linesPerStrip. \a atHand (may be null) is used where it fits.
    StripReader(const ViewSource &source, RequestPtr request, int level, int linesPerStrip, StripPtr atHand);

    /// current() is the strip of \a line.
    bool covers(int line) const { return strip && line >= strip->fromLine && line < strip->toLine; }
    /// Makes current() the strip of \a line.
    PLK::CError need(int line);
    /// Null before the first strip and after a failure.
    const StripPtr &current() const { return strip; }

private:
    using Clock = std::chrono::steady_clock;

    PLK::CError read(int fromLine, int toLine);
    void logRead(Clock::duration time) const;
    std::uint64_t cacheTilesInView();

    ViewSource source;
    RequestPtr request;
    CellKey key;
    int linesPerStrip;
    StripPtr strip;
    bool isCounted = false;
    std::uint64_t countedTiles = 0;
};

} // namespace xrv
