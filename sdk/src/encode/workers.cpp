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
            try {
                runOnce(&goesOn);
            } catch (const std::bad_alloc &) {
                hasRunOut = true;
                hasFailed = true;
            } catch (const std::exception &exception) {
                fail(exception);
            }
        }
    }

    CError outcome() const { return hasRunOut ? noMemory : firstError; }

private:
    void runOnce(bool *goesOn)
    {
        if (CError error = work(goesOn))
            keep(std::move(error));
    }

    void fail(const std::exception &exception) noexcept
    {
        try {
            keep({PLK_ERR_DECODE, exception.what()});
        } catch (const std::bad_alloc &) {
            hasRunOut = true;
            hasFailed = true;
        }
    }

    void keep(CError error)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!hasFailed)
            firstError = std::move(error);
        hasFailed = true;
    }

    const std::function<CError(bool *)> &work;
    /// Made before there is no memory for it: nothing may be thrown from a thread.
    const CError noMemory{PLK_ERR_OUT_OF_MEMORY, "There is not enough memory; take smaller blocks."};
    std::mutex mutex; ///< guards firstError
    CError firstError;
    std::atomic<bool> hasFailed{false}, hasRunOut{false};
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
    return crew.outcome();
}

} // namespace xrv
