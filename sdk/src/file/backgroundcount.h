#pragma once

#include "base/cancelflag.h"

#include <xrv60/plkerror.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace xrv {

/// A long piece of work on a thread of its own, which can be watched, cancelled and begun again. Any thread; ends with
/// the object.
class BackgroundCount
{
public:
    using Progress = std::function<void(int percent)>;
    using Work = std::function<PLK::CError(const CancelFlag &cancel, const Progress &progress)>;

    explicit BackgroundCount(Work work);
    /// Cancels the work and waits for it.
    ~BackgroundCount();

    /// Begins, unless it is under way. After cancel() the new run waits for the end of the old one.
    void start();
    /// Returns at once.
    void cancel();
    /// Waits for the end of what is under way. How the last run ended; PLK_ERR_CANCELLED where there was none.
    PLK::CError wait();

    bool isRunning() const { return running; }
    /// 0 to 100, of the present or the last run.
    int percent() const { return share; }

private:
    void run(const CancelFlag &flag);

    const Work work;
    std::mutex starting; ///< guards the thread, which start() and the destructor alone touch
    std::thread thread;
    std::mutex mutex; ///< guards what follows
    std::condition_variable ended;
    CancelFlag flag;
    PLK::CError outcome;
    std::atomic<bool> running{false}; ///< changed with the mutex held
    std::atomic<int> share{0};
};

} // namespace xrv
