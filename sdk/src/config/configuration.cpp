#include "configuration.h"

#include <algorithm>

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

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
    constexpr std::uint64_t kMinCacheBytes = std::uint64_t(16) << 20;
    constexpr std::uint64_t kSignBit = std::uint64_t(1) << 63;
    const std::uint64_t meant = wishedBytes & kSignBit ? wishedBytes & 0xFFFFFFFFu : wishedBytes;
    return std::clamp(meant, kMinCacheBytes, std::max(kMinCacheBytes, machineMemory / 4 * 3));
}

std::uint64_t physicalMemory()
{
    constexpr std::uint64_t kUnknown = std::uint64_t(1) << 30;
#if defined(_WIN32)
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : kUnknown;
#else
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? std::uint64_t(pages) * std::uint64_t(pageSize) : kUnknown;
#endif
}

} // namespace xrv
