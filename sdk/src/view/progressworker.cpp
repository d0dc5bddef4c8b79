#include "progressworker.h"

namespace xrv {

ProgressWorker::ProgressWorker(Work work)
    : work(std::move(work))
{
}

ProgressWorker::~ProgressWorker()
{
    stop();
}

void ProgressWorker::submit(RequestPtr request)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (stopping)
        return;
    waiting = std::move(request);
    if (!thread.joinable())
        thread = std::thread(&ProgressWorker::run, this);
    changed.notify_one();
}

void ProgressWorker::stop()
{
    std::thread ending;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        stopping = true;
        waiting.reset();
        ending = std::move(thread); // joined without the lock, which run() takes
        changed.notify_one();
    }
    if (ending.joinable())
        ending.join();
}

bool ProgressWorker::isCurrentThread() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return thread.get_id() == std::this_thread::get_id();
}

void ProgressWorker::run()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        changed.wait(lock, [this] { return stopping || waiting; });
        if (stopping)
            return;
        const RequestPtr request = std::move(waiting);
        lock.unlock(); // submit() must get through while the work is done
        work(request);
        lock.lock();
    }
}

} // namespace xrv
