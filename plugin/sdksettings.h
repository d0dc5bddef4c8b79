#pragma once

#include <QString>

class QSettings;

/// The settings that the SDK is started with.
struct SdkSettings
{
    bool textureDither = false;
    bool localXrvpCache = true;
    QString xrvpCacheDir;
    int cacheMaxMemMb = 512; ///< at least 100
    int diskCacheMaxSizeMb = 256;
    bool resilientDecoding = true;
    bool optimizeNearestNeighbour = true;
    QString xrvpUserAgent;
    bool useWinHttp = false;
};

/// What is stored under "XRVJP2kLayer/", with the defaults of the start-up for what is missing. The preferences page
/// has defaults of its own for some of it; the SDK runs with these until a person has saved the preferences.
SdkSettings readSdkSettings(const QSettings &settings);

/// Hands \a settings to the SDK's global configuration.
void applySdkSettings(const SdkSettings &settings);

/// Bytes of a memory limit as the SDK is given them: computed in 32 bits, so that 2048 MB and more come out as a
/// negative number widened with its sign. The SDK reads what was meant from the low 32 bits.
quint64 cacheMaxMemBytes(int megabytes);
