#include "sdksettings.h"

#include "settings/pluginsettings.h"

#include <xrv60/plkconfig.h>
#include <xrv60/plkfile.h>

#include <algorithm>

namespace {

constexpr int kMinCacheMb = 100;

} // namespace

SdkSettings readSdkSettings()
{
    using namespace PluginSettings;
    SdkSettings result;
    result.textureDither = read(kTextureDither);
    result.localXrvpCache = read(kLocalXrvpCache);
    result.xrvpCacheDir = read(kXrvpCacheDir);
    result.cacheMaxMemMb = std::max(kMinCacheMb, read(kCacheMaxMemMb));
    result.diskCacheMaxSizeMb = read(kDiskCacheMaxSizeMb);
    result.resilientDecoding = read(kResilientDecoding);
    result.optimizeNearestNeighbour = read(kNearestNeighbour);
    result.xrvpUserAgent = read(kXrvpUserAgent);
    result.useWinHttp = read(kUseWinHttp);
    return result;
}

quint64 cacheMaxMemBytes(int megabytes)
{
    const auto wrapped = static_cast<qint32>(static_cast<quint32>(megabytes) << 20);
    return static_cast<quint64>(qint64(wrapped));
}

void applySdkSettings(const SdkSettings &settings)
{
    PLK::SDK::CConfig &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
    config.SetTextureDitherEnabled(settings.textureDither);
    config.SetBlockingTimeMS(0);
    config.SetRefreshTimeMS(0);
    config.SetXrvpCacheEnabled(settings.localXrvpCache);
    config.SetXrvpCacheSizeMb(settings.diskCacheMaxSizeMb);
    config.SetXrvpCacheLocation(settings.xrvpCacheDir.toLocal8Bit().constData());
    config.SetCacheMaxmem(cacheMaxMemBytes(settings.cacheMaxMemMb));
    config.SetResilientDecodingEnabled(settings.resilientDecoding);
    config.SetOptimizeUseNearestNeighbour(settings.optimizeNearestNeighbour);
    config.SetXrvpClientHttpUserAgent(settings.xrvpUserAgent.toLocal8Bit().constData());
    config.SetProjectionFormat(PLK_PROJECTION_EPSG);
}
