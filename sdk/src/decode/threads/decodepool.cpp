#include "decodepool.h"

#include <algorithm>
#include <system_error>

namespace xrv {

/// The calls of one run().
struct DecodePool::Batch
{
    Batch(std::size_t workCount, const std::function<bool(std::size_t)> &workToDo)
        : count(workCount)
        , work(workToDo)
    {
    }

    /// Does one call; false when none is left to begin.
    bool doOne()
    {
        std::size_t index = 0;
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (next >= count)
                return false;
            index = next++;
            ++running;
        }
        const bool goesOn = work(index);
        std::lock_guard<std::mutex> lock(mutex);
        if (!goesOn)
            next = count;
        --running;
        if (running == 0 && next >= count)
            ended.notify_all();
        return true;
    }

    bool hasMore()
    {
        std::lock_guard<std::mutex> lock(mutex);
        return next < count;
    }

    void waitForEnd()
    {
        std::unique_lock<std::mutex> lock(mutex);
        ended.wait(lock, [this] { return running == 0 && next >= count; });
    }

private:
    const std::size_t count;
    const std::function<bool(std::size_t)> &work; ///< lives as long as run(), which outlasts every call
    std::mutex mutex;                             ///< guards what follows
    std::condition_variable ended;
    std::size_t next = 0, running = 0;
};

DecodePool &DecodePool::instance()
{
    static DecodePool pool;
    return pool;
}

DecodePool::~DecodePool()
{
    stop();
}

int DecodePool::threads()
{
    static const int count = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    return count;
}

void DecodePool::run(std::size_t count, const std::function<bool(std::size_t)> &work)
{
    auto batch = std::make_shared<Batch>(count, work);
    if (count > 1 && threads() > 1) {
        std::lock_guard<std::mutex> lock(mutex);
        if (workers.empty())
            start();
        batches.push_front(batch);
        if (count > 2)
            workCame.notify_all();
        else
            workCame.notify_one();
    }
    while (batch->doOne()) {
    }
    batch->waitForEnd();
}

/// With the mutex locked. The caller of run() is the last of the threads.
void DecodePool::start()
{
    isStopping = false;
    try {
        for (int i = 1; i < threads(); ++i)
            workers.emplace_back([this] { workForOthers(); });
    } catch (const std::system_error &) {
        // The system gives no more threads; those that are there do the work.
    }
}

void DecodePool::workForOthers()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        workCame.wait(lock, [this] { return isStopping || !batches.empty(); });
        if (isStopping)
            return;
        const std::shared_ptr<Batch> batch = batches.front();
        lock.unlock();
        batch->doOne();
        const bool isUsedUp = !batch->hasMore();
        lock.lock();
        const auto found = isUsedUp ? std::find(batches.begin(), batches.end(), batch) : batches.end();
        if (found != batches.end())
            batches.erase(found);
    }
}

void DecodePool::stop()
{
    std::vector<std::thread> ending;
    {
        std::lock_guard<std::mutex> lock(mutex);
        isStopping = true;
        ending.swap(workers);
        batches.clear();
    }
    workCame.notify_all();
    for (std::thread &worker : ending)
        worker.join();
}

} // namespace xrv
