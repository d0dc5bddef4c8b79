#include "stripreader.h"

#include <algorithm>

namespace xrv {

StripReader::StripReader(const ViewSource &source, RequestPtr request, int level, int linesPerStrip, StripPtr atHand)
    : source(source)
    , request(std::move(request))
    , key(cellKey(source, *this->request, level))
    , linesPerStrip(linesPerStrip)
{
    if (atHand && atHand->key == key)
        strip = std::move(atHand);
    if (strip) {
        blocksCounted = true;
        countedBlocks = strip->blocksInView;
    }
}

PLK::CError StripReader::need(int line)
{
    if (covers(line))
        return {};
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
    fresh->blocksInView = blocksInView();
    const ReadRequest read = readRequest(source, *request, key.level, fromLine, toLine);
    if (read.datasetRect.isEmpty()) {
        fresh->cells.planes.resize(key.components.size());
    } else if (const PLK::CError error = source.reader->read(read, &fresh->cells)) {
        return error;
    }
    if (fresh->cells.planes.size() != key.components.size())
        return {PLK_ERR_DECODE, "The decoder gave another number of components than was asked for."};
    strip = std::move(fresh);
    return {};
}

std::uint64_t StripReader::blocksInView()
{
    if (!blocksCounted) {
        blocksCounted = true;
        const ReadRequest whole = readRequest(source, *request, key.level, 0, request->height);
        countedBlocks = whole.datasetRect.isEmpty() ? 0 : source.reader->cost(whole).blocks;
    }
    return countedBlocks;
}

} // namespace xrv
