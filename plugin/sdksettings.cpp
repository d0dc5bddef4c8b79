#include "sdksettings.h"

#include <xrv60/plkconfig.h>
#include <xrv60/plkfile.h>

#include <QDir>
#include <QSettings>

#include <algorithm>

namespace {

constexpr int kLeastCacheMb = 100;

QVariant valueOf(const QSettings &settings, const char *name, const QVariant &defaultValue)
{
    return settings.value(QLatin1String("XRVJP2kLayer/") + QLatin1String(name), defaultValue);
}

} // namespace

SdkSettings readSdkSettings(const QSettings &settings)
{
    SdkSettings result;
    result.textureDither = valueOf(settings, "TextureDither", false).toBool();
    result.localXrvpCache = valueOf(settings, "LocalXrvpCache", true).toBool();
    result.xrvpCacheDir = valueOf(settings, "XrvpCacheDir", QDir::tempPath()).toString();
    result.cacheMaxMemMb = std::max(kLeastCacheMb, valueOf(settings, "CacheMaxMemMb", 512).toInt());
    result.diskCacheMaxSizeMb = valueOf(settings, "DiskCacheMaxSizeMb", 256).toInt();
    result.resilientDecoding = valueOf(settings, "ResilientDecoding", true).toBool();
    result.optimizeNearestNeighbour = valueOf(settings, "OptimizeNearestNeighbour", true).toBool();
    result.xrvpUserAgent = valueOf(settings, "XRVPUserAgent", QString()).toString();
    result.useWinHttp = valueOf(settings, "UseWinHTTPInXrvp", false).toBool();
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
