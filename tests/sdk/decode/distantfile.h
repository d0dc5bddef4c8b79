#pragma once

#include "io/memorysource.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <vector>

/// A file far away, fetched in pages that stay at hand: what a prefetch or a read lacks costs one request.
class DistantFile : public xrv::ByteSource
{
public:
    using Knowledge = std::map<std::string, xrv::Bytes>;

    /// \a knowledge: what is remembered between visits; may be null.
    explicit DistantFile(const xrv::Bytes &file, std::uint64_t pageSize = 1, Knowledge *knowledge = nullptr)
        : memory(file)
        , pageSize(pageSize)
        , knowledge(knowledge)
        , isAtHand(static_cast<std::size_t>(file.size() / pageSize) + 1, false)
    {
    }
    const std::string &name() const override { return memory.name(); }
    std::uint64_t size() const override { return memory.size(); }
    bool isRemote() const override { return true; }
    std::string identity() const override { return memory.identity(); }
    using ByteSource::read;
    PLK::CError read(const std::vector<xrv::ByteRange> &ranges, const xrv::CancelFlag &cancel,
                     std::vector<xrv::Bytes> *out) override
    {
        take(ranges);
        return memory.read(ranges, cancel, out);
    }
    PLK::CError prefetch(const std::vector<xrv::ByteRange> &ranges, const xrv::CancelFlag &) override
    {
        take(ranges);
        return {};
    }
    void remember(const std::string &thing, const xrv::Bytes &value) override
    {
        if (knowledge)
            (*knowledge)[thing] = value;
    }
    bool recall(const std::string &thing, xrv::Bytes *value) override
    {
        if (!knowledge || knowledge->count(thing) == 0)
            return false;
        *value = knowledge->at(thing);
        return true;
    }

    int requests = 0;
    std::uint64_t fetched = 0; ///< bytes

private:
    void take(const std::vector<xrv::ByteRange> &ranges)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const std::uint64_t before = fetched;
        for (const xrv::ByteRange &range : ranges) {
            const std::uint64_t end = std::min(range.end(), memory.size());
            for (std::uint64_t page = range.offset / pageSize; page * pageSize < end; ++page) {
                fetched += isAtHand.at(page) ? 0 : pageSize;
                isAtHand[page] = true;
            }
        }
        requests += fetched > before ? 1 : 0;
    }

    xrv::MemorySource memory;
    const std::uint64_t pageSize;
    Knowledge *const knowledge;
    std::mutex mutex; ///< guards what follows, and the counters
    std::vector<bool> isAtHand;
};
