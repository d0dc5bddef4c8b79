#include "streamoptions.h"

#include "../config/globalconfig.h"
#include "../io/utf8.h"

#include <algorithm>

namespace xrv {

namespace {

/// A line's end would end the header.
std::string withoutControls(std::string text)
{
    const auto isControl = [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; };
    text.erase(std::remove_if(text.begin(), text.end(), isControl), text.end());
    return text;
}

} // namespace

StreamOptions StreamOptions::fromConfig()
{
    const PLK::SDK::CConfig &config = globalConfig();
    StreamOptions options;
    options.userAgent = withoutControls(utf8FromLocal8Bit(config.GetXrvpClientHttpUserAgent()));
    options.caFile = utf8FromLocal8Bit(config.GetXrvpClientCaFile());
    options.cacheFolder = utf8FromLocal8Bit(config.GetXrvpCacheLocation());
    options.cacheBytes = std::uint64_t(config.GetXrvpCacheSizeMb()) << 20;
    options.cacheEnabled = config.IsXrvpCacheEnabled() && !options.cacheFolder.empty() && options.cacheBytes > 0;
    return options;
}

} // namespace xrv
