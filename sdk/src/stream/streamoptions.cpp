#include "streamoptions.h"

#include "../config/globalconfig.h"
#include "../io/utf8.h"

namespace xrv {

StreamOptions StreamOptions::fromConfig()
{
    const PLK::SDK::CConfig &config = globalConfig();
    StreamOptions options;
    options.userAgent = utf8FromLocal8Bit(config.GetXrvpClientHttpUserAgent());
    options.caFile = utf8FromLocal8Bit(config.GetXrvpClientCaFile());
    options.cacheFolder = utf8FromLocal8Bit(config.GetXrvpCacheLocation());
    options.cacheBytes = std::uint64_t(config.GetXrvpCacheSizeMb()) << 20;
    options.cacheEnabled = config.IsXrvpCacheEnabled() && !options.cacheFolder.empty() && options.cacheBytes > 0;
    return options;
}

} // namespace xrv
