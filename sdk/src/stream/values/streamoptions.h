#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace xrv {

/// What the stream client goes by. Times in milliseconds, sizes in bytes.
struct StreamOptions
{
    /// As the process's configuration has it now.
    static StreamOptions fromConfig();

    int connectTimeout = 10000;
    int stallTimeout = 15000;         ///< an answer of which nothing to speak of came for so long has failed
    int trialTimeout = 2500;          ///< the same for a server that was lost, while somebody waits for its first bytes
    int tries = 3;                    ///< in a row that bring nothing new
    int firstBackOff = 300;           ///< before the second try; doubled before the third
    int maxRetryAfter = 5000;         ///< a server that wants a longer pause counts as out of service
    std::uint64_t firstBytes = 16384; ///< asked for when a file is opened: boxes and main header as a rule
    std::string userAgent;            ///< none is sent when empty
    std::string caFile;               ///< certificates to trust besides the system's, PEM
    bool cacheEnabled = false;        ///< on disk
    std::string cacheFolder;          ///< UTF-8
    std::uint64_t cacheBytes = 0;
    std::uint64_t wholeInMemory = std::uint64_t(64) << 20; ///< largest file taken whole without a cache on disk
};

} // namespace xrv
