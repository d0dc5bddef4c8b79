#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace Korvane::Gui {

/// A function on a thread of its own, whose end can be waited for and looked for.
class TaskThread
{
public:
    /// Throws std::system_error where there is no thread to be had.
    explicit TaskThread(const std::function<void()> &work);
    /// Waits for the end.
    ~TaskThread();
    TaskThread(const TaskThread &) = delete;
    TaskThread &operator=(const TaskThread &) = delete;

    bool isDone() const;
    /// Returns at the end of the work or after \a milliseconds, whichever is sooner.
    void waitFor(int milliseconds) const;
    /// Waits for the end; throws what the work threw.
    void finish();

private:
    void carryOut(const std::function<void()> &work);

    mutable std::mutex mutex; ///< guards the flag
    mutable std::condition_variable ended;
    bool done = false;
    std::exception_ptr failure;
    std::thread thread; ///< last: works with what is above
};

} // namespace Korvane::Gui
