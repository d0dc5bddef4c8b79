#pragma once

#include "passplanner.h"
#include "progressworker.h"
#include "viewprogress.h"

#include "view/lines/picture.h"
#include "view/lines/viewrequest.h"

#include <xrv60/plkerror.h>
#include <xrv60/plktypes.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace xrv {

/// Hears of the passes of a progressive view.
class PassListener
{
public:
    virtual ~PassListener() = default;
    /// A pass can be read; on the worker's thread, with no lock held. PLK_READ_CANCELLED ends the view's decoding.
    virtual PLKReadStatus passReady(PLKSetViewInfo *info) = 0;
};

/// The views of one open file, one after the other: what PLK::CView promises of SetView() and of reading, for any
/// source of cells.
///
/// Everything but stop() and the reading of lines returns at once. A lock of the caller is never waited for: the engine
/// holds none of its own while it calls the listener.
class ViewEngine
{
public:
    ViewEngine(ViewSource source, bool progressive, PassListener &listener);
    ~ViewEngine();

    bool isProgressive() const { return progressive; }
    /// Sets \a request, whose generation and components are filled in here, in place of the last one, which is
    /// cancelled. A blocking view with a blocking time is decoded on the worker's thread at once, and waited for as
    /// long as that.
    void setView(ViewRequest request);
    /// Begins the view that is set again, as after setView() with the same request.
    void restart();
    /// Cancels the view that is set.
    void cancelReads();
    /// Cancels and waits for the worker. Not from the listener. No view can be set afterwards.
    void stop();

    /// Next line of the view: in a blocking one decoded as it is read, in a progressive one of the last pass that was
    /// announced; PLK_READ_CANCELLED before the first pass of a view.
    PLKReadStatus readLine(const LineTarget &target);

    bool isViewSet() const;
    /// All 0 before the first view.
    PLKSetViewInfo viewInfo() const;
    /// Reads are cancelled: of the view that is set or, asked by the listener, of the pass that it was told of.
    bool isCancelPending() const;
    bool isWorkerThread() const { return worker.isCurrentThread(); }
    int percent() const { return progress.percent(); }
    ViewProgress::CacheTiles cacheTiles() const { return progress.cacheTiles(); }
    PLK::CError lastError() const;
    void setLastError(PLK::CError error);

private:
    using Clock = std::chrono::steady_clock;

    void decode(const RequestPtr &request);
    void prepareBlocking(const RequestPtr &request);
    void waitForLines(const ViewRequest &request);
    void decodePasses(const RequestPtr &request);
    std::vector<Pass> planPasses(const RequestPtr &request, int finalLevel);
    std::shared_ptr<Picture> prepare(const RequestPtr &request, const Pass &pass, PLK::CError *error);
    bool comesTooSoon(const Pass &pass, const ViewRequest &request) const;
    bool deliver(const std::shared_ptr<Picture> &picture, bool isFinal);
    bool announce(const std::shared_ptr<Picture> &picture);
    PLKSetViewInfo infoOf(const ViewRequest &request) const;
    StripPtr stripAtHand() const;
    void noteLine(const Picture &picture);

    const ViewSource source;
    const bool progressive;
    PassListener &listener;
    ViewProgress progress;
    RateTracker rate;                 ///< worker's thread only
    Clock::time_point lastCallback{}; ///< worker's thread only

    mutable std::mutex mutex; ///< guards the members up to lastReadError
    RequestPtr newest;
    std::shared_ptr<Picture> current; ///< what lines are read from
    bool currentIsFinal = false;
    StripPtr kept; ///< all cells of the last finished picture
    std::uint64_t generations = 0;
    bool stopping = false;
    std::thread::id callbackThread;       ///< of the callback that runs
    std::uint64_t preparedGeneration = 0; ///< of the last blocking view whose first lines were decoded ahead
    PLK::CError lastReadError;

    std::condition_variable prepared; ///< preparedGeneration changed

    ProgressWorker worker; ///< last, so that its thread ends first
};

} // namespace xrv
