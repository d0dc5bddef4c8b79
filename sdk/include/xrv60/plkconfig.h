#pragma once

#include "plkexport.h"

#include <cstdint>
#include <string>

/// In which notation projections are named.
enum PLKProjectionFormat : int {
    PLK_PROJECTION_NONE = 0, ///< not at all: datum and projection are "RAW"
    PLK_PROJECTION_EPSG = 1, ///< names as the EPSG register gives them
};

namespace PLK::SDK {

/// The SDK's global configuration, the same through every object of this class. Every operation may be called from any
/// thread; it applies to what is opened, set or decoded afterwards unless it says otherwise.
class PLK_EXPORT CConfig
{
public:
    CConfig() = default;
    CConfig(const CConfig &) = delete;
    CConfig &operator=(const CConfig &) = delete;

    /// What views made from now on begin with: ViewParametersDecompress::SetReaderDitherEnabled().
    void SetTextureDitherEnabled(bool enabled);
    bool IsTextureDitherEnabled() const;
    /// Longest time that SetView of a blocking view may wait for its first lines, in milliseconds; 0 waits not at all.
    void SetBlockingTimeMS(unsigned milliseconds);
    unsigned GetBlockingTimeMS() const;
    /// Shortest time between two refresh callbacks of a view, in milliseconds; 0 is one callback per pass.
    void SetRefreshTimeMS(unsigned milliseconds);
    unsigned GetRefreshTimeMS() const;
    /// Streams are kept on disk between visits, where there is a folder for it. On from the start.
    void SetXrvpCacheEnabled(bool enabled);
    bool IsXrvpCacheEnabled() const;
    /// What all streams on disk may take together, in MB of 2^20 bytes; what was not used for longest goes first. Also
    /// the largest file taken from servers that give files as a whole only. 256 from the start, 0 is no cache.
    void SetXrvpCacheSizeMb(int megabytes);
    int GetXrvpCacheSizeMb() const;
    /// \a folder in the local 8-bit encoding, made where it is missing. Other files in it are left alone. Null is no
    /// folder, and so no cache.
    void SetXrvpCacheLocation(const char *folder);
    std::string GetXrvpCacheLocation() const;
    /// Budget of the decoded-tile cache of all views in bytes. What a caller makes by sign-extending a 32-bit number
    /// (2^63 and more) is read as its low 32 bits, which is what was meant; the result is kept between 16 MiB and three
    /// quarters of the machine's memory. 512 MiB from the start. Applies at once.
    void SetCacheMaxmem(std::uint64_t bytes);
    /// The budget in force, in bytes.
    std::uint64_t GetCacheMaxmem() const;
    /// Damaged files are shown as far as they can be; otherwise damage is an error.
    void SetResilientDecodingEnabled(bool enabled);
    bool IsResilientDecodingEnabled() const;
    /// Nearest-neighbour views may take their cells from a coarser resolution level.
    void SetOptimizeUseNearestNeighbour(bool enabled);
    bool GetOptimizeUseNearestNeighbour() const;
    /// \a userAgent in the local 8-bit encoding.
    void SetXrvpClientHttpUserAgent(const char *userAgent);
    std::string GetXrvpClientHttpUserAgent() const;
    /// PEM file of certificates that servers of "xrvps://" addresses may be vouched for by, besides the system's; local
    /// 8-bit encoding. Null or empty: the file that the environment names in SSL_CERT_FILE, if any.
    void SetXrvpClientCaFile(const char *file);
    std::string GetXrvpClientCaFile() const;
    void SetProjectionFormat(PLKProjectionFormat format);
    PLKProjectionFormat GetProjectionFormat() const;
};

} // namespace PLK::SDK
