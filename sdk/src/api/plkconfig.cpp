#include <xrv60/plkconfig.h>

#include "config/configuration.h"
#include "decode/cache/tilecache.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

#include <algorithm>

namespace PLK::SDK {

namespace {

std::string textOf(const char *value)
{
    return value ? value : "";
}

} // namespace

void CConfig::SetTextureDitherEnabled(bool enabled)
{
    xrv::configuration().textureDither = enabled;
}

bool CConfig::IsTextureDitherEnabled() const
{
    return xrv::configuration().textureDither;
}

void CConfig::SetBlockingTimeMS(unsigned milliseconds)
{
    xrv::configuration().blockingTimeMs = milliseconds;
}

unsigned CConfig::GetBlockingTimeMS() const
{
    return xrv::configuration().blockingTimeMs;
}

void CConfig::SetRefreshTimeMS(unsigned milliseconds)
{
    xrv::configuration().refreshTimeMs = milliseconds;
}

unsigned CConfig::GetRefreshTimeMS() const
{
    return xrv::configuration().refreshTimeMs;
}

void CConfig::SetXrvpCacheEnabled(bool enabled)
{
    xrv::configuration().xrvpCache = enabled;
}

bool CConfig::IsXrvpCacheEnabled() const
{
    return xrv::configuration().xrvpCache;
}

void CConfig::SetXrvpCacheSizeMb(int megabytes)
{
    xrv::configuration().xrvpCacheSizeMb = std::max(0, megabytes);
}

int CConfig::GetXrvpCacheSizeMb() const
{
    return xrv::configuration().xrvpCacheSizeMb;
}

void CConfig::SetXrvpCacheLocation(const char *folder)
{
    xrv::configuration().xrvpCacheLocation.set(textOf(folder));
}

std::string CConfig::GetXrvpCacheLocation() const
{
    return xrv::configuration().xrvpCacheLocation.get();
}

void CConfig::SetCacheMaxmem(std::uint64_t bytes)
{
    const std::uint64_t budget = xrv::cacheBudget(bytes, xrv::physicalMemory());
    xrv::configuration().cacheMaxmem = budget;
    xrv::TileCache::instance().setBudget(budget);
    if (budget != bytes && xrv::logEnabled(PLK_LOG_INFO))
        xrv::log(PLK_LOG_INFO, "Tile cache: " + std::to_string(bytes) + " bytes were asked for, " +
                                   std::to_string(budget) + " are used.");
}

std::uint64_t CConfig::GetCacheMaxmem() const
{
    return xrv::configuration().cacheMaxmem;
}

void CConfig::SetResilientDecodingEnabled(bool enabled)
{
    xrv::configuration().resilientDecoding = enabled;
}

bool CConfig::IsResilientDecodingEnabled() const
{
    return xrv::configuration().resilientDecoding;
}

void CConfig::SetOptimizeUseNearestNeighbour(bool enabled)
{
    xrv::configuration().optimizeNearestNeighbour = enabled;
}

bool CConfig::GetOptimizeUseNearestNeighbour() const
{
    return xrv::configuration().optimizeNearestNeighbour;
}

void CConfig::SetXrvpClientHttpUserAgent(const char *userAgent)
{
    xrv::configuration().userAgent.set(textOf(userAgent));
}

std::string CConfig::GetXrvpClientHttpUserAgent() const
{
    return xrv::configuration().userAgent.get();
}

void CConfig::SetXrvpClientCaFile(const char *file)
{
    xrv::configuration().caFile.set(textOf(file));
}

std::string CConfig::GetXrvpClientCaFile() const
{
    return xrv::configuration().caFile.get();
}

void CConfig::SetProjectionFormat(PLKProjectionFormat format)
{
    xrv::configuration().projectionFormat = format;
}

PLKProjectionFormat CConfig::GetProjectionFormat() const
{
    return xrv::configuration().projectionFormat;
}

} // namespace PLK::SDK
