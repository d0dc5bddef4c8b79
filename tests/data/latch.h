#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

/// Opened by one thread, waited for by others.
class Latch
{
public:
    void open()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOpen = true;
        changed.notify_all();
    }
    /// False when it has not been opened within 20 seconds.
    bool wait()
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(20), [this] { return isOpen; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool isOpen = false;
};

/// Waits for what nobody tells of; false when it has not come within 20 seconds.
template <typename Condition> bool waitUntil(const Condition &isThere)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!isThere()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::yield();
    }
    return true;
}

/// Gives other threads the chance to do what they must not do.
inline void letOthersRun()
{
    for (int i = 0; i < 200; ++i)
        std::this_thread::yield();
}
