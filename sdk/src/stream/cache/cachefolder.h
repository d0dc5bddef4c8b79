#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace xrv {

/// The streams' files in a folder, by their common names without ".cache" and ".data". Paths are UTF-8. What other
/// processes do meanwhile does no harm.
class CacheFolder
{
public:
    struct Pair
    {
        std::string base;
        std::uint64_t bytes = 0;
        std::int64_t lastUse = 0; ///< in the file system's own unit and count
    };

    explicit CacheFolder(std::string path);
    /// Makes it where it is missing.
    bool create() const;
    /// Those whose names begin with \a prefix.
    std::vector<Pair> pairs(const std::string &prefix) const;
    void remove(const std::string &base) const;
    /// Makes \a base the one that was used last, whatever the clock says.
    void touch(const std::string &base) const;
    /// Removes what was not used for longest, but not \a keptBase, until \a wanted more bytes stay within \a limit;
    /// false when that is impossible.
    bool makeRoom(std::uint64_t wanted, std::uint64_t limit, const std::string &keptBase) const;

private:
    const std::string path;
};

} // namespace xrv
