#pragma once

#include "cachedstream.h"

#include "stream/values/streamoptions.h"

#include <memory>
#include <string>

namespace xrv {

/// The folder in which streams are kept between visits: a pair of files, "xrvp-….cache" and "xrvp-….data", for every
/// version of every address. Their names are checksums: nothing that a server or an address says reaches the file
/// system. Other files in the folder are left alone. Shared by processes. Any thread.
class StreamCache
{
public:
    explicit StreamCache(const StreamOptions &options);

    /// The version of \a address (printable, see StreamAddress) that was used last; null without one.
    std::shared_ptr<CachedStream> latest(const std::string &address) const;
    /// That of \a version, made where there is none; earlier versions of the address are removed. Null where the folder
    /// takes no files, which is logged once.
    std::shared_ptr<CachedStream> stream(const std::string &address, const FileVersion &version) const;
    void remove(const std::string &address, const FileVersion &version) const;

private:
    std::shared_ptr<CachedStream> open(const std::string &base, const FileVersion *version) const;
    bool isEnabled() const { return limit > 0 && !folder.empty(); }
    std::string basePath(const std::string &base) const;

    const std::string folder;  ///< UTF-8
    const std::uint64_t limit; ///< bytes of all streams together; 0 for no cache
};

} // namespace xrv
