#include "stripreader.h"

#include "texturedither.h"

#include "base/utf8.h"
#include "log/faultlog.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

#include <algorithm>
#include <chrono>

namespace xrv {

StripReader::StripReader(const ViewSource &source, RequestPtr request, int level, int linesPerStrip, StripPtr atHand)
    : source(source)
    , request(std::move(request))
    , key(cellKey(source, *this->request, level))
    , linesPerStrip(linesPerStrip)
{
    // Equal keys mean equal cells, so that a new contrast or another method costs no decode.
    if (atHand && atHand->key == key)
        strip = std::move(atHand);
    if (strip) {
        isCounted = true;
        countedTiles = strip->cacheTilesInView;
    }
}

PLK::CError StripReader::need(int line)
{
    if (covers(line))
        return {};
    // At multiples, wherever reading begins: what is read again is the same strip.
    const int fromLine = line / linesPerStrip * linesPerStrip;
    return read(fromLine, std::min(fromLine + linesPerStrip, request->height));
}

PLK::CError StripReader::read(int fromLine, int toLine)
{
    // The last strip goes first, so that there is never more than one.
    strip.reset();
    auto fresh = std::make_shared<Strip>();
    fresh->key = key;
    fresh->fromLine = fromLine;
    fresh->toLine = toLine;
    fresh->cacheTilesInView = cacheTilesInView();
    ReadRequest read = readRequest(source, *request, key.level, fromLine, toLine);
    if (key.isDithered && !read.datasetRect.isEmpty())
        read = readForDither(source.reader->info(), read);
    const auto start = Clock::now();
    if (read.datasetRect.isEmpty()) { // beside the image: lines without any pixel inside
        fresh->cells.planes.resize(key.components.size());
    } else if (PLK::CError error = source.reader->read(read, &fresh->cells)) {
        return error;
    }
    if (fresh->cells.planes.size() != key.components.size())
        return {PLK_ERR_DECODE, "The decoder gave another number of components than was asked for."};
    if (key.isDithered)
        for (Plane &plane : fresh->cells.planes)
            ditherPlane(source.reader->info(), *source.bandMap, key.level, &plane);
    strip = std::move(fresh);
    logRead(Clock::now() - start);
    return {};
}

void StripReader::logRead(Clock::duration time) const
{
    // The file's damage is met by every view of it; who logs it says it once.
    if (strip->cells.damaged && source.faults)
        source.faults->cellsDamaged(strip->cells.damage);
    if (!logEnabled(PLK_LOG_TRACE))
        return;
    const auto microseconds = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
    log(PLK_LOG_TRACE,
        wideFromUtf8("\"" + source.name + "\": view " + std::to_string(request->generation) + ", level " +
                     std::to_string(key.level) + ": lines " + std::to_string(strip->fromLine) + " to " +
                     std::to_string(strip->toLine - 1) + " of " + std::to_string(request->height) + ", " +
                     std::to_string(request->width) + " pixels each, were decoded in " +
                     std::to_string(microseconds / 1000) + "." + std::to_string(microseconds % 1000 / 100) + " ms."));
}

/// Of all strips, though only some may ever be read: a caller wants to know how much of the whole is there. Counted
/// once, as it means a look at every cache tile of the view.
std::uint64_t StripReader::cacheTilesInView()
{
    if (!isCounted) {
        isCounted = true;
        const ReadRequest whole = readRequest(source, *request, key.level, 0, request->height);
        countedTiles = whole.datasetRect.isEmpty() ? 0 : source.reader->cost(whole).cacheTiles;
    }
    return countedTiles;
}

} // namespace xrv
