#include "backgroundcount.h"

#include <exception>
#include <system_error>
#include <utility>

namespace xrv {

using PLK::CError;

BackgroundCount::BackgroundCount(Work work)
    : work(std::move(work))
    , outcome(PLK_ERR_CANCELLED, "Nothing was counted.")
{
}

BackgroundCount::~BackgroundCount()
{
    cancel();
    if (thread.joinable())
        thread.join();
}

void BackgroundCount::start()
{
    const std::lock_guard<std::mutex> one(starting);
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (running && !flag.isRaised())
            return;
    }
    if (thread.joinable())
        thread.join(); // has ended, or was cancelled and is about to
    const std::lock_guard<std::mutex> lock(mutex);
    flag = CancelFlag();
    share = 0;
    try {
        thread = std::thread([this, given = flag] { run(given); });
        running = true;
    } catch (const std::system_error &) {
        outcome = CError(PLK_ERR_OUT_OF_MEMORY, "There is no thread to count the cells with.");
    }
}

void BackgroundCount::run(const CancelFlag &given)
{
    CError result;
    try {
        result = work(given, [this](int percent) { share = percent; });
    } catch (const std::exception &exception) {
        result = CError(PLK_ERR_DECODE, exception.what());
    }
    const std::lock_guard<std::mutex> lock(mutex);
    outcome = std::move(result);
    running = false;
    ended.notify_all();
}

void BackgroundCount::cancel()
{
    const std::lock_guard<std::mutex> lock(mutex);
    flag.raise();
}

CError BackgroundCount::wait()
{
    std::unique_lock<std::mutex> lock(mutex);
    ended.wait(lock, [this] { return !running; });
    return outcome;
}

} // namespace xrv
