#pragma once

#include "base/plane.h"

#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace xrv {

/// Decoded cells of all open files, least recently used out first, within one budget of bytes. Any thread.
class TileCache
{
public:
    /// Whose cells: a file's identity (see ByteSource::identity()), a tile, a resolution level, the quality layers that
    /// were decoded and a component.
    struct Key
    {
        std::uint64_t file = 0;
        std::uint32_t tile = 0;
        std::uint16_t layers = 0;
        std::uint16_t component = 0;
        std::uint8_t level = 0;
        std::uint64_t codeBlock = 0; ///< 0: samples; otherwise the coefficients of this code-block
        bool operator==(const Key &k) const
        {
            return file == k.file && tile == k.tile && layers == k.layers && component == k.component &&
                   level == k.level && codeBlock == k.codeBlock;
        }
    };
    using PlanePtr = std::shared_ptr<const Plane>;

    /// The cache of the process.
    static TileCache &instance();

    /// Number that stands for the file with \a identity in keys.
    std::uint64_t fileNumber(const std::string &identity);

    /// What there is of \a key; the planes may overlap and together leave gaps. Counts as use.
    std::vector<PlanePtr> find(const Key &key);
    /// Whether there is anything; no use.
    bool contains(const Key &key) const;
    /// Keeps \a plane, unless it alone is larger than the budget. Planes of the same key that lie within it go.
    void insert(const Key &key, PlanePtr plane);
    /// Somebody reads this file by way of the cache from now on, or no longer.
    void addReader(std::uint64_t file);
    void removeReader(std::uint64_t file);
    /// Drops all of a file, unless it has other readers than the one that asks.
    void drop(std::uint64_t file);
    void clear();

    /// Drops what is over the new budget.
    void setBudget(std::uint64_t bytes);
    std::uint64_t budget() const;
    std::uint64_t bytesUsed() const;

private:
    struct KeyHash
    {
        std::size_t operator()(const Key &key) const;
    };
    struct Entry
    {
        Key key;
        PlanePtr plane;
    };
    using Entries = std::list<Entry>; // most recently used first
    void remove(Entries::iterator entry);
    void shrinkTo(std::uint64_t bytes);

    mutable std::mutex mutex; ///< guards everything below
    Entries entries;
    std::unordered_map<Key, std::vector<Entries::iterator>, KeyHash> byKey;
    std::unordered_map<std::string, std::uint64_t> fileNumbers;
    std::unordered_map<std::uint64_t, int> readers; ///< by file
    std::uint64_t limit = std::uint64_t(512) << 20;
    std::uint64_t used = 0;
};

} // namespace xrv
