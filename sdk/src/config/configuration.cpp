#include "configuration.h"

#include <algorithm>

namespace xrv {

namespace {

constexpr std::uint64_t kDefaultCacheBytes = std::uint64_t(512) << 20;

} // namespace

Configuration::Configuration()
    : cacheMaxmem(cacheBudget(kDefaultCacheBytes, physicalMemory()))
{
}

Configuration &configuration()
{
    // Never destroyed: views that static objects own may still close when the process ends.
    static auto *configuration = new Configuration;
    return *configuration;
}

std::uint64_t cacheBudget(std::uint64_t wishedBytes, std::uint64_t machineMemory)
{
    constexpr std::uint64_t kSmallest = std::uint64_t(16) << 20;
    constexpr std::uint64_t kSignBit = std::uint64_t(1) << 63;
    const std::uint64_t meant = wishedBytes & kSignBit ? wishedBytes & 0xFFFFFFFFu : wishedBytes;
    return std::clamp(meant, kSmallest, std::max(kSmallest, machineMemory / 4 * 3));
}

} // namespace xrv
