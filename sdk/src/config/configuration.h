#pragma once

#include <xrv60/plkconfig.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

namespace xrv {

/// A text that several threads read and write.
class SharedText
{
public:
    void set(std::string newText)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        text.swap(newText);
    }
    std::string get() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return text;
    }

private:
    mutable std::mutex mutex; ///< guards text
    std::string text;
};

/// What PLK::SDK::CConfig sets and every stage may read, with the values that it begins with. Any thread.
struct Configuration
{
    std::atomic<bool> textureDither{false};
    std::atomic<unsigned> blockingTimeMs{0};
    std::atomic<unsigned> refreshTimeMs{0};
    std::atomic<bool> xrvpCache{true};
    std::atomic<int> xrvpCacheSizeMb{256};
    std::atomic<std::uint64_t> cacheMaxmem; ///< bytes, see cacheBudget()
    std::atomic<bool> resilientDecoding{true};
    std::atomic<bool> optimizeNearestNeighbour{true};
    std::atomic<PLKProjectionFormat> projectionFormat{PLK_PROJECTION_EPSG};
    // In the local 8-bit encoding, as they were given.
    SharedText xrvpCacheLocation;
    SharedText userAgent;
    SharedText caFile;

    Configuration();
};

/// That of the process.
Configuration &configuration();

/// What CConfig::SetCacheMaxmem() makes of its argument on a machine with \a machineMemory bytes.
std::uint64_t cacheBudget(std::uint64_t wishedBytes, std::uint64_t machineMemory);

/// Of this computer, in bytes.
std::uint64_t physicalMemory();

} // namespace xrv
