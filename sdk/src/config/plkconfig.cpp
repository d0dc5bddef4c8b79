#include <xrv60/plkconfig.h>

#include "globalconfig.h"
#include "logger.h"

#include "../decode/tilecache.h"

#include <xrv60/plkfile.h>
#include <xrv60/plklog.h>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace xrv {

PLK::SDK::CConfig &globalConfig()
{
    return PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
}

std::uint64_t cacheBudget(std::uint64_t wishedBytes, std::uint64_t machineMemory)
{
    constexpr std::uint64_t kSmallest = std::uint64_t(16) << 20;
    constexpr std::uint64_t kSignBit = std::uint64_t(1) << 63;
    const std::uint64_t meant = wishedBytes & kSignBit ? wishedBytes & 0xFFFFFFFFu : wishedBytes;
    return std::clamp(meant, kSmallest, std::max(kSmallest, machineMemory / 4 * 3));
}

} // namespace xrv

namespace PLK::SDK {

namespace {

constexpr std::uint64_t kDefaultCacheBytes = std::uint64_t(512) << 20;

} // namespace

struct CConfig::Values
{
    std::atomic<bool> textureDither{false};
    std::atomic<unsigned> blockingTimeMs{0};
    std::atomic<unsigned> refreshTimeMs{0};
    std::atomic<bool> xrvpCache{true};
    std::atomic<int> xrvpCacheSizeMb{256};
    std::atomic<std::uint64_t> cacheMaxmem{xrv::cacheBudget(kDefaultCacheBytes, xrv::physicalMemory())};
    std::atomic<bool> resilientDecoding{true};
    std::atomic<bool> optimizeNearestNeighbour{true};
    std::atomic<PLKProjectionFormat> projectionFormat{PLK_PROJECTION_EPSG};
    mutable std::mutex textMutex; ///< guards the texts below
    std::string xrvpCacheLocation;
    std::string userAgent;
    std::string caFile;

    void setText(std::string Values::*text, const char *value)
    {
        const std::lock_guard<std::mutex> lock(textMutex);
        this->*text = value ? value : "";
    }
    std::string textOf(std::string Values::*text) const
    {
        const std::lock_guard<std::mutex> lock(textMutex);
        return this->*text;
    }
};

CConfig::CConfig()
    : values(std::make_unique<Values>())
{
}

CConfig::~CConfig() = default;

void CConfig::SetTextureDitherEnabled(bool enabled)
{
    values->textureDither = enabled;
}

bool CConfig::IsTextureDitherEnabled() const
{
    return values->textureDither;
}

void CConfig::SetBlockingTimeMS(unsigned milliseconds)
{
    values->blockingTimeMs = milliseconds;
}

unsigned CConfig::GetBlockingTimeMS() const
{
    return values->blockingTimeMs;
}

void CConfig::SetRefreshTimeMS(unsigned milliseconds)
{
    values->refreshTimeMs = milliseconds;
}

unsigned CConfig::GetRefreshTimeMS() const
{
    return values->refreshTimeMs;
}

void CConfig::SetXrvpCacheEnabled(bool enabled)
{
    values->xrvpCache = enabled;
}

bool CConfig::IsXrvpCacheEnabled() const
{
    return values->xrvpCache;
}

void CConfig::SetXrvpCacheSizeMb(int megabytes)
{
    values->xrvpCacheSizeMb = std::max(0, megabytes);
}

int CConfig::GetXrvpCacheSizeMb() const
{
    return values->xrvpCacheSizeMb;
}

void CConfig::SetXrvpCacheLocation(const char *folder)
{
    values->setText(&Values::xrvpCacheLocation, folder);
}

std::string CConfig::GetXrvpCacheLocation() const
{
    return values->textOf(&Values::xrvpCacheLocation);
}

void CConfig::SetCacheMaxmem(std::uint64_t bytes)
{
    const std::uint64_t budget = xrv::cacheBudget(bytes, xrv::physicalMemory());
    values->cacheMaxmem = budget;
    xrv::TileCache::instance().setBudget(budget);
    if (budget != bytes && xrv::logEnabled(PLK_LOG_INFO))
        xrv::log(PLK_LOG_INFO, "Tile cache: " + std::to_string(bytes) + " bytes were asked for, " +
                                   std::to_string(budget) + " are used.");
}

std::uint64_t CConfig::GetCacheMaxmem() const
{
    return values->cacheMaxmem;
}

void CConfig::SetResilientDecodingEnabled(bool enabled)
{
    values->resilientDecoding = enabled;
}

bool CConfig::IsResilientDecodingEnabled() const
{
    return values->resilientDecoding;
}

void CConfig::SetOptimizeUseNearestNeighbour(bool enabled)
{
    values->optimizeNearestNeighbour = enabled;
}

bool CConfig::GetOptimizeUseNearestNeighbour() const
{
    return values->optimizeNearestNeighbour;
}

void CConfig::SetXrvpClientHttpUserAgent(const char *userAgent)
{
    values->setText(&Values::userAgent, userAgent);
}

std::string CConfig::GetXrvpClientHttpUserAgent() const
{
    return values->textOf(&Values::userAgent);
}

void CConfig::SetXrvpClientCaFile(const char *file)
{
    values->setText(&Values::caFile, file);
}

std::string CConfig::GetXrvpClientCaFile() const
{
    return values->textOf(&Values::caFile);
}

void CConfig::SetProjectionFormat(PLKProjectionFormat format)
{
    values->projectionFormat = format;
}

PLKProjectionFormat CConfig::GetProjectionFormat() const
{
    return values->projectionFormat;
}

} // namespace PLK::SDK
