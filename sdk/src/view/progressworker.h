#pragma once

#include "view/lines/viewrequest.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace xrv {

/// The thread of one progressive view. It starts with the first request and works on the newest one only: a request
/// that is replaced before its turn is dropped.
class ProgressWorker
{
public:
    using Work = std::function<void(const RequestPtr &request)>;

    /// \a work is called on the thread and returns soon after the request's flag was raised. It throws nothing.
    explicit ProgressWorker(Work work);
    ~ProgressWorker();

    /// Hands over \a request. Does not wait for work in progress.
    void submit(RequestPtr request);
    /// Drops what waits and returns when the work in progress has ended. Nothing is taken on afterwards.
    void stop();
    /// The caller runs on the worker's thread.
    bool isCurrentThread() const;

private:
    void run();

    Work work;
    mutable std::mutex mutex; ///< guards waiting, stopping and thread
    std::condition_variable changed;
    RequestPtr waiting;
    bool stopping = false;
    std::thread thread;
};

} // namespace xrv
