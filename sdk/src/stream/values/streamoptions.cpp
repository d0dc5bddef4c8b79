#include "streamoptions.h"

#include "base/utf8.h"
#include "config/configuration.h"

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
    const Configuration &config = configuration();
    StreamOptions options;
    options.userAgent = withoutControls(utf8FromLocal8Bit(config.userAgent.get()));
    options.caFile = utf8FromLocal8Bit(config.caFile.get());
    options.cacheFolder = utf8FromLocal8Bit(config.xrvpCacheLocation.get());
    options.cacheBytes = std::uint64_t(config.xrvpCacheSizeMb) << 20;
    options.cacheEnabled = config.xrvpCache && !options.cacheFolder.empty() && options.cacheBytes > 0;
    return options;
}

} // namespace xrv
