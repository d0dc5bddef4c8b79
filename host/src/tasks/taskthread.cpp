#include "taskthread.h"

#include <chrono>

namespace Korvane::Gui {

TaskThread::TaskThread(const std::function<void()> &work)
    : thread([this, work] { carryOut(work); })
{
}

TaskThread::~TaskThread()
{
    if (thread.joinable())
        thread.join();
}

void TaskThread::carryOut(const std::function<void()> &work)
{
    try {
        work();
    } catch (...) {
        failure = std::current_exception();
    }
    const std::lock_guard<std::mutex> lock(mutex);
    done = true;
    ended.notify_all();
}

bool TaskThread::isDone() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return done;
}

void TaskThread::waitFor(int milliseconds) const
{
    std::unique_lock<std::mutex> lock(mutex);
    ended.wait_for(lock, std::chrono::milliseconds(milliseconds), [this] { return done; });
}

void TaskThread::finish()
{
    thread.join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace Korvane::Gui
