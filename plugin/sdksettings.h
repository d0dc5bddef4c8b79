#pragma once

#include <QString>

/// The settings that the SDK is started with.
struct SdkSettings
{
    bool textureDither = false;
    bool localXrvpCache = false;
    QString xrvpCacheDir;
    int cacheMaxMemMb = 0; ///< at least 100
    int diskCacheMaxSizeMb = 0;
    bool resilientDecoding = false;
    bool optimizeNearestNeighbour = false;
    QString xrvpUserAgent;
    bool useWinHttp = false;
};

/// What is stored, with the defaults of the start-up for what is missing. The preferences page has defaults of its own
/// for some of it; the SDK runs with these until a person has saved the preferences.
SdkSettings readSdkSettings();

/// Hands \a settings to the SDK's global configuration.
void applySdkSettings(const SdkSettings &settings);

/// Bytes of a memory limit as the SDK is given them: computed in 32 bits, so that 2048 MB and more come out as a
/// negative number widened with its sign. The SDK reads what was meant from the low 32 bits.
quint64 cacheMaxMemBytes(int megabytes);
