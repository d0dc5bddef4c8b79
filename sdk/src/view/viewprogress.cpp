#include "viewprogress.h"

#include <algorithm>

namespace xrv {

void ViewProgress::restart()
{
    const std::lock_guard<std::mutex> lock(mutex);
    reached = 0;
    counted = {};
}

void ViewProgress::setCacheTiles(std::uint64_t inView, std::uint64_t available)
{
    const std::lock_guard<std::mutex> lock(mutex);
    counted.inView = std::max(counted.inView, inView);
    counted.available = std::min(counted.inView, std::max(counted.available, available));
}

void ViewProgress::advance(double percent, double share)
{
    const std::lock_guard<std::mutex> lock(mutex);
    reached = std::max(reached, std::clamp(static_cast<int>(percent), 0, 99));
    const auto available =
        static_cast<std::uint64_t>(static_cast<double>(counted.inView) * std::clamp(share, 0.0, 1.0));
    counted.available = std::min(counted.inView, std::max(counted.available, available));
}

void ViewProgress::finish()
{
    const std::lock_guard<std::mutex> lock(mutex);
    reached = 100;
    counted.available = counted.inView;
}

int ViewProgress::percent() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return reached;
}

ViewProgress::CacheTiles ViewProgress::cacheTiles() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return counted;
}

} // namespace xrv
