#include "workers.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace xrv {

using PLK::CError;

namespace {

/// What the threads share.
class Crew
{
public:
    explicit Crew(const std::function<CError(bool *)> &work)
        : work(work)
    {
    }

    void run()
    {
        bool goesOn = true;
        while (goesOn && !hasFailed) {
            if (CError error = runOnce(&goesOn)) {
                const std::lock_guard<std::mutex> lock(mutex);
                if (!hasFailed)
                    firstError = error;
                hasFailed = true;
            }
        }
    }

    CError firstError;

private:
    CError runOnce(bool *goesOn)
    {
        try {
            return work(goesOn);
        } catch (const std::bad_alloc &) {
            return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory; take smaller blocks."};
        } catch (const std::exception &exception) {
            return {PLK_ERR_DECODE, exception.what()};
        }
    }

    const std::function<CError(bool *)> &work;
    std::mutex mutex; ///< guards firstError
    std::atomic<bool> hasFailed{false};
};

} // namespace

unsigned threadCount(int wanted)
{
    return wanted > 0 ? static_cast<unsigned>(wanted) : std::max(1u, std::thread::hardware_concurrency());
}

CError runWorkers(unsigned threads, const std::function<CError(bool *)> &work)
{
    Crew crew(work);
    std::vector<std::thread> others;
    try {
        for (unsigned i = 1; i < threads; ++i)
            others.emplace_back([&crew] { crew.run(); });
    } catch (const std::system_error &) {
        // The system gives no more threads; those that are there do the work.
    }
    crew.run();
    for (std::thread &other : others)
        other.join();
    return crew.firstError;
}

} // namespace xrv
