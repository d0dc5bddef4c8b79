#include "picture.h"

#include <algorithm>
#include <new>

namespace xrv {

Picture::Picture(const ViewSource &source, RequestPtr request, int level, StripPtr atHand)
    : viewRequest(std::move(request))
    , lines(source.reader->info(), *source.bandMap, viewRequest, level)
    , strips(source, viewRequest, level, lines.linesFor(StripReader::kStripBytes), std::move(atHand))
{
}

PLK::CError Picture::prepare()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return need(0);
}

/// With the lock held, which makes other readers of lines wait for the decode: they could not go on without it.
PLK::CError Picture::need(int line)
{
    if (viewRequest->cancel.isRaised())
        return {PLK_ERR_CANCELLED, "Reading was cancelled."};
    if (failure) // a file that cannot be decoded is not tried again for each line
        return failure;
    if (!strips.covers(line))
        bound.reset(); // so that there are never two strips at once
    PLK::CError error;
    try {
        error = strips.need(line);
    } catch (const std::bad_alloc &) {
        error = {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to decode this view."};
    }
    if (error) {
        if (error.GetErrorNumber() != PLK_ERR_CANCELLED)
            failure = error;
        return error;
    }
    if (bound != strips.current()) { // the planes are not copied, so the strip is held as long as lines come from it
        bound = strips.current();
        lines.bind(bound->cells.planes);
    }
    return {};
}

PLKReadStatus Picture::readLine(const LineTarget &target, PLK::CError *error)
{
    const std::lock_guard<std::mutex> lock(mutex);
    *error = need(nextLine);
    // The flag once more: a decode that was cancelled may have ended with another error, or in time.
    if (error->GetErrorNumber() == PLK_ERR_CANCELLED || viewRequest->cancel.isRaised())
        return PLK_READ_CANCELLED;
    if (*error)
        return PLK_READ_FAILED;
    if (nextLine == 0)
        lines.setAutoscaleOpacity(target.autoscaleOpacity);
    if (target.bgra != nullptr)
        lines.makeBgra(nextLine, static_cast<std::uint8_t *>(target.bgra));
    else
        lines.makeBil(nextLine, target.type, target.lines);
    nextLine = (nextLine + 1) % viewRequest->height; // a caller that paints again need not set the view again
    reachedLine = std::min(reachedLine + 1, viewRequest->height);
    return PLK_READ_SUCCESS;
}

void Picture::rewind()
{
    const std::lock_guard<std::mutex> lock(mutex);
    nextLine = 0;
    reachedLine = 0;
}

int Picture::linesRead() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return reachedLine;
}

StripPtr Picture::strip() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return bound;
}

} // namespace xrv
