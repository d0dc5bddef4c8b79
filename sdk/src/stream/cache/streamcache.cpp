#include "streamcache.h"

#include "cachefolder.h"
#include "checksum.h"

#include "base/utf8.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

#include <algorithm>
#include <mutex>
#include <set>

namespace xrv {

namespace {

constexpr std::uint64_t kSeed = 0, kOtherSeed = 0x5EED;

std::string addressBase(const std::string &address)
{
    return "xrvp-" + checksumText(address, kSeed) + checksumText(address, kOtherSeed);
}

std::string baseOf(const std::string &address, const FileVersion &version)
{
    return addressBase(address) + '-' + checksumText(version.text(), kSeed);
}

/// What the records of a version of an address are sealed with.
std::uint64_t keyOf(const std::string &base)
{
    return checksum64(base.data(), base.size(), kSeed);
}

void logOnce(const std::string &folder)
{
    static std::mutex mutex;
    static std::set<std::string> logged;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (!logged.insert(folder).second)
            return;
    }
    log(PLK_LOG_WARNING,
        wideFromUtf8("The stream cache cannot use the folder \"" + folder + "\"; streams are kept in memory only."));
}

} // namespace

StreamCache::StreamCache(const StreamOptions &options)
    : folder(options.cacheFolder)
    , limit(options.cacheEnabled ? options.cacheBytes : 0)
{
}

std::string StreamCache::basePath(const std::string &base) const
{
    return folder + '/' + base;
}

std::shared_ptr<CachedStream> StreamCache::open(const std::string &base, const FileVersion *version) const
{
    const CacheFolder place(folder);
    const auto keepRoom = [place, base, limit = limit](std::uint64_t bytes) {
        return place.makeRoom(bytes, limit, base);
    };
    std::shared_ptr<CachedStream> stream = CachedStream::open(basePath(base), keyOf(base), version, keepRoom);
    if (stream)
        place.touch(base);
    return stream;
}

std::shared_ptr<CachedStream> StreamCache::latest(const std::string &address) const
{
    if (!isEnabled())
        return nullptr;
    std::vector<CacheFolder::Pair> versions = CacheFolder(folder).pairs(addressBase(address) + '-');
    if (versions.empty())
        return nullptr;
    const auto last = std::max_element(versions.begin(), versions.end(),
                                       [](const auto &a, const auto &b) { return a.lastUse < b.lastUse; });
    return open(last->base, nullptr);
}

std::shared_ptr<CachedStream> StreamCache::stream(const std::string &address, const FileVersion &version) const
{
    if (!isEnabled())
        return nullptr;
    const CacheFolder place(folder);
    const std::string base = baseOf(address, version);
    std::shared_ptr<CachedStream> opened = place.create() ? open(base, &version) : nullptr;
    if (!opened)
        logOnce(folder);
    for (const CacheFolder::Pair &other : place.pairs(addressBase(address) + '-'))
        if (other.base != base)
            place.remove(other.base);
    return opened;
}

void StreamCache::remove(const std::string &address, const FileVersion &version) const
{
    if (isEnabled())
        CacheFolder(folder).remove(baseOf(address, version));
}

} // namespace xrv
