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

PLK::CError Picture::need(int line)
{
    if (viewRequest->cancel.isRaised())
        return {PLK_ERR_CANCELLED, "Reading was cancelled."};
    if (failure)
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
    if (bound != strips.current()) {
        bound = strips.current();
        lines.bind(bound->cells.planes);
    }
    return {};
}

PLKReadStatus Picture::readLine(const LineTarget &target, PLK::CError *error)
{
    const std::lock_guard<std::mutex> lock(mutex);
    *error = need(nextLine);
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
    nextLine = (nextLine + 1) % viewRequest->height;
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
