#include "viewengine.h"

#include "levelchooser.h"
#include "passplanner.h"

#include "log/faultlog.h"

#include <algorithm>
#include <new>

namespace xrv {

namespace {

double millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Levels that views may use. Indices into a palette have no mean between them, so that of such images only the full
/// resolution shows what there is.
int usableLevels(const ViewSource &source)
{
    return source.bandMap->hasPalette() ? 1 : source.reader->info().levels;
}

int finalLevelOf(const ViewSource &source, const ViewRequest &request)
{
    if (usableLevels(source) == 1)
        return 0;
    return chooseLevel(source.reader->info(), request);
}

} // namespace

ViewEngine::ViewEngine(ViewSource source, bool progressive, PassListener &listener)
    : source(std::move(source))
    , progressive(progressive)
    , listener(listener)
    , worker([this](const RequestPtr &request) { decode(request); })
{
}

ViewEngine::~ViewEngine()
{
    stop();
}

/// Never waits for a callback or, but for the blocking time that a blocking view may have, for a decode: the caller may
/// hold the very lock that the callback in flight is waiting for. The new view takes the place of the old one under the
/// engine's own lock, which nobody holds for longer than it takes to swap pointers and figures; levels, tables and keys
/// are worked out before.
void ViewEngine::setView(ViewRequest newRequest)
{
    // Callers drive a view from one thread, so that nobody else counts generations.
    newRequest.generation = ++generations;
    newRequest.cancel = CancelFlag();
    newRequest.components = source.bandMap->componentsFor(newRequest.bands);
    const auto request = std::make_shared<const ViewRequest>(std::move(newRequest));
    const int level = finalLevelOf(source, *request);
    // The same cells as before, for other transforms or another method: nothing need be decoded.
    const StripPtr atHand = stripAtHand();
    const bool isAtHand = atHand && atHand->key == cellKey(source, *request, level);
    const auto picture = progressive ? nullptr : std::make_shared<Picture>(source, request, level, atHand);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (stopping)
            return;
        if (newest)
            CancelFlag(newest->cancel).raise();
        newest = request;
        // A progressive view leaves the picture of the old one in place until its own first pass: lines that are read
        // from it turn into "cancelled", because its flag is up.
        if (!progressive) {
            current = picture;
            currentIsFinal = true;
        }
        progress.restart();
        if (isAtHand)
            progress.setCacheTiles(atHand->cacheTilesInView, atHand->cacheTilesInView);
        if (isAtHand && !progressive)
            progress.finish();
    }
    // A still newer view drops this request before its turn.
    if (progressive || (request->blockingTimeMs > 0 && !isAtHand))
        worker.submit(request);
    if (!progressive && request->blockingTimeMs > 0 && !isAtHand)
        waitForLines(*request);
}

void ViewEngine::restart()
{
    RequestPtr request;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        request = newest;
    }
    if (request)
        setView(*request);
}

/// Only a blocking view waits here, and that has no callbacks which could want a lock of the caller.
void ViewEngine::waitForLines(const ViewRequest &request)
{
    std::unique_lock<std::mutex> lock(mutex);
    prepared.wait_for(lock, std::chrono::milliseconds(request.blockingTimeMs),
                      [&] { return preparedGeneration >= request.generation || request.cancel.isRaised(); });
}

void ViewEngine::prepareBlocking(const RequestPtr &request)
{
    std::shared_ptr<Picture> picture;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        picture = current;
    }
    // It may be that of a newer view already, whose turn comes next.
    if (&picture->request() == request.get())
        picture->prepare(); // whoever reads its lines is told of a failure
    const std::lock_guard<std::mutex> lock(mutex);
    preparedGeneration = request->generation;
    prepared.notify_all();
}

void ViewEngine::cancelReads()
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (newest)
        CancelFlag(newest->cancel).raise();
}

/// From now on no request is taken on. The flag ends the decode in progress; a callback in flight is waited for,
/// which is why this must not be called with a lock that it takes.
void ViewEngine::stop()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
        if (newest)
            CancelFlag(newest->cancel).raise();
    }
    worker.stop();
}

PLKReadStatus ViewEngine::readLine(const LineTarget &target)
{
    std::shared_ptr<Picture> picture;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!newest) {
            lastReadError = {PLK_ERR_NO_VIEW, "No view has been set."};
            return PLK_READ_FAILED;
        }
        picture = current;
    }
    if (!picture)
        return PLK_READ_CANCELLED; // no pass of any view yet
    // Without the lock: a line may have to be decoded first, and setting a view must not wait for that.
    PLK::CError error;
    const PLKReadStatus status = picture->readLine(target, &error);
    if (status == PLK_READ_SUCCESS)
        noteLine(*picture);
    else if (status == PLK_READ_FAILED)
        setLastError(error);
    return status;
}

void ViewEngine::noteLine(const Picture &picture)
{
    const int lines = picture.linesRead(), height = picture.request().height;
    const StripPtr strip = picture.strip();
    const std::lock_guard<std::mutex> lock(mutex);
    // A line of a view that was replaced meanwhile, or of a coarse pass, says nothing about how far this view is.
    if (picture.request().cancel.isRaised() || current.get() != &picture || !currentIsFinal)
        return;
    if (strip && strip->isWhole())
        kept = strip;
    if (lines == height)
        return progress.finish();
    if (strip) {
        const double share = static_cast<double>(strip->toLine) / height;
        progress.setCacheTiles(strip->cacheTilesInView, 0);
        progress.advance(progressive ? 0.0 : 100.0 * lines / height, share);
    }
}

bool ViewEngine::isViewSet() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return newest != nullptr;
}

PLKSetViewInfo ViewEngine::viewInfo() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return newest ? infoOf(*newest) : PLKSetViewInfo{};
}

PLKSetViewInfo ViewEngine::infoOf(const ViewRequest &request) const
{
    const ViewProgress::CacheTiles tiles = progress.cacheTiles();
    PLKSetViewInfo info{};
    info.nSizeX = static_cast<std::uint32_t>(request.width);
    info.nSizeY = static_cast<std::uint32_t>(request.height);
    info.fTopLeftX = request.worldRect.left;
    info.fTopLeftY = request.worldRect.top;
    info.fBottomRightX = request.worldRect.right;
    info.fBottomRightY = request.worldRect.bottom;
    info.nBands = static_cast<std::uint32_t>(request.bands.size());
    info.nGeneration = request.generation;
    info.nBlocksInView = tiles.inView;
    info.nBlocksAvailable = tiles.available;
    return info;
}

bool ViewEngine::isCancelPending() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    // Inside a callback the question is whether its own pass still counts, whatever was set since.
    if (callbackThread == std::this_thread::get_id() && current)
        return current->request().cancel.isRaised();
    return newest && newest->cancel.isRaised();
}

PLK::CError ViewEngine::lastError() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return lastReadError;
}

void ViewEngine::setLastError(PLK::CError error)
{
    if (source.faults)
        source.faults->failed(error);
    const std::lock_guard<std::mutex> lock(mutex);
    lastReadError = std::move(error);
}

StripPtr ViewEngine::stripAtHand() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return kept;
}

void ViewEngine::decode(const RequestPtr &request)
{
    // An exception must not leave the thread; the only one to expect is that memory ran out.
    try {
        if (progressive)
            decodePasses(request);
        else
            prepareBlocking(request);
    } catch (const std::exception &) {
        setLastError({PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to decode this view."});
        if (progressive && !request->cancel.isRaised())
            progress.finish();
    }
}

void ViewEngine::decodePasses(const RequestPtr &request)
{
    const std::vector<Pass> passes = planPasses(request, finalLevelOf(source, *request));
    double all = 0.0, done = 0.0;
    for (const Pass &pass : passes)
        all += pass.expected;
    for (const Pass &pass : passes) {
        const bool isFinal = &pass == &passes.back();
        done += pass.expected;
        if (!isFinal && comesTooSoon(pass, *request)) // the final pass is never left out
            continue;
        PLK::CError error;
        const std::shared_ptr<Picture> picture = prepare(request, pass, &error);
        if (request->cancel.isRaised())
            return;
        if (error && !isFinal)
            continue; // a finer level may be whole, and if not, the final pass says so
        if (error)
            setLastError(error);
        if (!isFinal)
            progress.advance(all > 0.0 ? 100.0 * done / all : 0.0, 0.0);
        if (!deliver(picture, isFinal))
            return;
    }
}

std::vector<Pass> ViewEngine::planPasses(const RequestPtr &request, int finalLevel)
{
    const StripPtr atHand = stripAtHand();
    ReadRequest read = readRequest(source, *request, finalLevel, 0, request->height);
    if (read.datasetRect.isEmpty() || (atHand && atHand->key == cellKey(source, *request, finalLevel)))
        return {{finalLevel, 0.0, 0.0}};
    // All levels are asked for the same rectangle, so that their costs can be compared.
    std::vector<int> levels{finalLevel};
    for (int level = finalLevel + 1; level < usableLevels(source); ++level)
        if (isLevelUsable(source.reader->info(), request->components, level))
            levels.push_back(level);
    const auto costOf = [&](int level) {
        read.level = level;
        return source.reader->cost(read);
    };
    PassPlanner planner(levels, costOf, [this](double estimated) { return rate.expected(estimated); });
    std::vector<Pass> passes = planner.plan();
    progress.setCacheTiles(planner.finalCost().cacheTiles, planner.finalCost().cacheTilesReady);
    return passes;
}

std::shared_ptr<Picture> ViewEngine::prepare(const RequestPtr &request, const Pass &pass, PLK::CError *error)
{
    const Clock::time_point start = Clock::now();
    auto picture = std::make_shared<Picture>(source, request, pass.level, stripAtHand());
    *error = picture->prepare();
    const StripPtr strip = picture->strip();
    if (!*error && strip && strip->isWhole()) // the estimate is of the whole view: one strip of many tells nothing
        rate.learn(pass.estimated, millisecondsSince(start));
    return picture;
}

/// It would be ready before the caller wants to be called again. Better than to make it and wait: the time goes to the
/// passes that follow.
bool ViewEngine::comesTooSoon(const Pass &pass, const ViewRequest &request) const
{
    if (request.refreshTimeMs == 0 || lastCallback == Clock::time_point{})
        return false;
    return millisecondsSince(lastCallback) + pass.expected < request.refreshTimeMs;
}

/// Announces \a picture and goes on unless the view has ended. The flag is looked at under the lock under which
/// setView() raises it: once that has returned, no older pass becomes the current picture. One that already is may
/// still be told of, without a lock of ours, and its lines turn into "cancelled".
bool ViewEngine::deliver(const std::shared_ptr<Picture> &picture, bool isFinal)
{
    const StripPtr strip = picture->strip();
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (picture->request().cancel.isRaised())
            return false;
        current = picture;
        currentIsFinal = isFinal;
        callbackThread = std::this_thread::get_id();
        if (isFinal && strip && strip->isWhole())
            kept = strip;
        // Callbacks ask how far the view is. What is left of a final pass that is read in strips counts with its lines.
        if (isFinal && (!strip || strip->isWhole()))
            progress.finish();
    }
    const bool goesOn = announce(picture);
    const std::lock_guard<std::mutex> lock(mutex);
    callbackThread = {};
    if (picture->request().cancel.isRaised() || !goesOn)
        return false;
    if (isFinal)
        progress.finish();
    return true;
}

bool ViewEngine::announce(const std::shared_ptr<Picture> &picture)
{
    PLKSetViewInfo info = infoOf(picture->request());
    PLKReadStatus status = PLK_READ_FAILED;
    try {
        status = listener.passReady(&info);
    } catch (...) {
        // The caller's failure; the passes that follow may fare better.
    }
    lastCallback = Clock::now(); // not before: what the caller does with a pass takes its time too
    picture->rewind();           // lines that are read between passes begin at the top
    return status != PLK_READ_CANCELLED;
}

} // namespace xrv
