#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace xrv {

/// The threads that decode, one per core, shared by all files. They start with the first work. The latest work comes
/// first: what was begun for an older view can wait.
class DecodePool
{
public:
    /// The pool of the process.
    static DecodePool &instance();
    DecodePool() = default;
    ~DecodePool();

    /// How many threads work together in run(), the caller's included.
    static int threads();
    /// Calls \a work for 0 to count - 1, several at a time, also on this thread, and returns after the last. Once a
    /// call returns false the ones that have not begun are left out. Any thread, also from within work.
    void run(std::size_t count, const std::function<bool(std::size_t)> &work);
    /// Ends the threads once they are idle; the next run() starts them again. No other thread may be in run().
    void stop();

private:
    struct Batch;
    void start();
    void workForOthers();

    std::mutex mutex; ///< guards what follows
    std::condition_variable workCame;
    std::deque<std::shared_ptr<Batch>> batches; ///< with work that nobody has begun, latest first
    std::vector<std::thread> workers;
    bool isStopping = false;
};

} // namespace xrv
