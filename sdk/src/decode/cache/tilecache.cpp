#include "tilecache.h"

#include <algorithm>

namespace xrv {

namespace {

/// What an entry costs besides its cells.
constexpr std::uint64_t kEntryOverhead = 256;

std::uint64_t sizeOf(const Plane &plane)
{
    return plane.bytes.capacity() + kEntryOverhead;
}

} // namespace

TileCache &TileCache::instance()
{
    static TileCache cache;
    return cache;
}

std::size_t TileCache::KeyHash::operator()(const Key &key) const
{
    std::uint64_t h = key.file * 0x9E3779B97F4A7C15ull;
    h ^= (std::uint64_t(key.tile) << 32 | std::uint64_t(key.component) << 16 | key.layers) * 0xC2B2AE3D27D4EB4Full;
    h ^= (key.level + key.codeBlock * 64) * 0x165667B19E3779F9ull;
    return static_cast<std::size_t>(h ^ h >> 29);
}

std::uint64_t TileCache::fileNumber(const std::string &identity)
{
    std::lock_guard<std::mutex> lock(mutex);
    return fileNumbers.emplace(identity, fileNumbers.size() + 1).first->second;
}

std::vector<TileCache::PlanePtr> TileCache::find(const Key &key)
{
    std::lock_guard<std::mutex> lock(mutex);
    std::vector<PlanePtr> planes;
    const auto found = byKey.find(key);
    if (found == byKey.end())
        return planes;
    for (const Entries::iterator entry : found->second) {
        planes.push_back(entry->plane);
        entries.splice(entries.begin(), entries, entry);
    }
    return planes;
}

bool TileCache::contains(const Key &key) const
{
    std::lock_guard<std::mutex> lock(mutex);
    return byKey.count(key) != 0;
}

void TileCache::insert(const Key &key, PlanePtr plane)
{
    std::lock_guard<std::mutex> lock(mutex);
    const std::uint64_t size = sizeOf(*plane);
    if (size > limit)
        return;
    const std::vector<Entries::iterator> older = byKey[key];
    for (const auto entry : older)
        if (plane->rect.contains(entry->plane->rect))
            remove(entry);
    shrinkTo(limit - size);
    // Room first: where there is no memory, nothing has changed.
    std::vector<Entries::iterator> &places = byKey[key];
    places.reserve(places.size() + 1);
    entries.push_front({key, std::move(plane)});
    places.push_back(entries.begin());
    used += size;
}

void TileCache::addReader(std::uint64_t file)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ++readers[file];
}

void TileCache::removeReader(std::uint64_t file)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = readers.find(file);
    if (found != readers.end() && --found->second <= 0)
        readers.erase(found);
}

void TileCache::drop(std::uint64_t file)
{
    std::lock_guard<std::mutex> lock(mutex);
    const auto found = readers.find(file);
    if (found != readers.end() && found->second > 1)
        return;
    for (auto entry = entries.begin(); entry != entries.end();) {
        const auto next = std::next(entry);
        if (entry->key.file == file)
            remove(entry);
        entry = next;
    }
}

void TileCache::clear()
{
    std::lock_guard<std::mutex> lock(mutex);
    entries.clear();
    byKey.clear();
    used = 0;
}

void TileCache::setBudget(std::uint64_t bytes)
{
    std::lock_guard<std::mutex> lock(mutex);
    limit = bytes;
    shrinkTo(limit);
}

std::uint64_t TileCache::budget() const
{
    std::lock_guard<std::mutex> lock(mutex);
    return limit;
}

std::uint64_t TileCache::bytesUsed() const
{
    std::lock_guard<std::mutex> lock(mutex);
    return used;
}

void TileCache::remove(Entries::iterator entry)
{
    used -= sizeOf(*entry->plane);
    const auto found = byKey.find(entry->key);
    std::vector<Entries::iterator> &siblings = found->second;
    siblings.erase(std::find(siblings.begin(), siblings.end(), entry));
    if (siblings.empty())
        byKey.erase(found);
    entries.erase(entry);
}

void TileCache::shrinkTo(std::uint64_t bytes)
{
    while (used > bytes && !entries.empty())
        remove(std::prev(entries.end()));
}

} // namespace xrv
