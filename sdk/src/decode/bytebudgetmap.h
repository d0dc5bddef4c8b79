#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace xrv {

/// Values by key, the least recently used out first once they take more than a budget of bytes. Any thread.
/// Value must have memoryUse().
template <typename Key, typename Value, typename Hash = std::hash<Key>> class ByteBudgetMap
{
public:
    using ValuePtr = std::shared_ptr<const Value>;

    explicit ByteBudgetMap(std::size_t budget)
        : budget(budget)
    {
    }

    /// Null when there is none.
    ValuePtr find(const Key &key)
    {
        std::lock_guard<std::mutex> lock(mutex);
        const auto found = byKey.find(key);
        if (found == byKey.end())
            return nullptr;
        entries.splice(entries.begin(), entries, found->second);
        return found->second->value;
    }

    /// Keeps the first value that comes for a key.
    void insert(const Key &key, ValuePtr value)
    {
        std::lock_guard<std::mutex> lock(mutex);
        if (byKey.count(key))
            return;
        const std::size_t size = value->memoryUse();
        entries.push_front({key, std::move(value), size});
        byKey[key] = entries.begin();
        used += size;
        while (used > budget && entries.size() > 1) {
            used -= entries.back().size;
            byKey.erase(entries.back().key);
            entries.pop_back();
        }
    }

private:
    struct Entry
    {
        Key key;
        ValuePtr value;
        std::size_t size;
    };
    const std::size_t budget;
    std::mutex mutex;         ///< guards everything below
    std::list<Entry> entries; ///< most recently used first
    std::unordered_map<Key, typename std::list<Entry>::iterator, Hash> byKey;
    std::size_t used = 0;
};

} // namespace xrv
