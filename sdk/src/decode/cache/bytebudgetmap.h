#pragma once

#include <cstddef>
#include <iterator>
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
        if (!byKey.count(key))
            add(key, std::move(value));
    }

    /// Keeps the last value that comes for a key.
    void replace(const Key &key, ValuePtr value)
    {
        std::lock_guard<std::mutex> lock(mutex);
        const auto found = byKey.find(key);
        if (found != byKey.end())
            remove(found->second);
        add(key, std::move(value));
    }

private:
    struct Entry
    {
        Key key;
        ValuePtr value;
        std::size_t size;
    };
    using EntryAt = typename std::list<Entry>::iterator;

    void add(const Key &key, ValuePtr value)
    {
        const std::size_t size = value->memoryUse();
        entries.push_front({key, std::move(value), size});
        try {
            byKey[key] = entries.begin();
        } catch (...) {
            entries.pop_front();
            throw;
        }
        used += size;
        while (used > budget && entries.size() > 1)
            remove(std::prev(entries.end()));
    }

    void remove(EntryAt entry)
    {
        used -= entry->size;
        byKey.erase(entry->key);
        entries.erase(entry);
    }

    const std::size_t budget;
    std::mutex mutex;         ///< guards everything below
    std::list<Entry> entries; ///< most recently used first
    std::unordered_map<Key, EntryAt, Hash> byKey;
    std::size_t used = 0;
};

} // namespace xrv
