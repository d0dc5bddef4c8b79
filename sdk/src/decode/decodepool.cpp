#include "decodepool.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/task_arena.h>

#include <algorithm>
#include <atomic>

namespace xrv {

namespace {

tbb::task_arena &arena()
{
    static tbb::task_arena pool(DecodePool::threads());
    return pool;
}

} // namespace

int DecodePool::threads()
{
    static const int count = std::max(1, tbb::this_task_arena::max_concurrency());
    return count;
}

void DecodePool::run(std::size_t count, const std::function<bool(std::size_t)> &work)
{
    if (count == 1) {
        work(0);
        return;
    }
    std::atomic<bool> stopped{false};
    arena().execute([&] {
        tbb::parallel_for(
            tbb::blocked_range<std::size_t>(0, count, 1),
            [&](const tbb::blocked_range<std::size_t> &range) {
                for (std::size_t i = range.begin(); i != range.end() && !stopped; ++i)
                    if (!work(i))
                        stopped = true;
            },
            tbb::simple_partitioner());
    });
}

} // namespace xrv
