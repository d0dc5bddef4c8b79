#pragma once

#include "stream/values/rangeassembly.h"

#include <cstdint>
#include <list>
#include <map>
#include <mutex>
#include <string>

namespace xrv {

/// Bytes of streams in memory, for the whole process: what was not used for longest goes first, but for what is pinned.
/// Any thread.
class SegmentStore
{
public:
    static SegmentStore &instance();
    explicit SegmentStore(std::uint64_t budgetBytes = kBudget);

    /// A number that stands for \a identity (see ByteSource::identity()).
    std::uint64_t fileNumber(const std::string &identity);
    /// Keeps a copy of \a length bytes from \a offset of the file. With a \a pin other than 0 they stay until it is
    /// released, within bounds.
    void put(std::uint64_t file, std::uint64_t offset, const std::uint8_t *data, std::uint64_t length,
             std::uint64_t pin);
    /// Gives \a assembly what is here of what it lacks.
    void collect(std::uint64_t file, RangeAssembly *assembly);
    /// What is not here of \a ranges; what is here is pinned.
    ByteRangeSet missing(std::uint64_t file, const std::vector<ByteRange> &ranges, std::uint64_t pin);
    void release(std::uint64_t file, std::uint64_t pin);
    void drop(std::uint64_t file);
    void clear();
    std::uint64_t usedBytes() const;

    static constexpr std::uint64_t kBudget = std::uint64_t(64) << 20;
    static constexpr std::uint64_t kMaxPinned = 2 * kBudget; ///< beyond that pins do not count

private:
    struct Place
    {
        std::uint64_t file, offset;
    };
    struct Segment
    {
        Bytes bytes;
        std::uint64_t pin = 0;          ///< the newest one
        std::list<Place>::iterator use; ///< in pinnedUses with a pin, in uses without
    };
    using Segments = std::map<std::uint64_t, Segment>;

    void insert(Segments &segments, std::uint64_t file, const ByteRange &range, const std::uint8_t *data,
                std::uint64_t pin);
    template <typename Visit> void visit(std::uint64_t file, const ByteRange &range, Visit visitor);
    void setPin(Segment &segment, std::uint64_t pin);
    void evict();
    void removeOldest(std::list<Place> *list);

    const std::uint64_t budget;
    mutable std::mutex mutex; ///< guards the members below
    std::map<std::uint64_t, Segments> files;
    std::map<std::string, std::uint64_t> numbers;
    std::list<Place> uses, pinnedUses; ///< newest first
    std::uint64_t used = 0, pinned = 0, lastNumber = 0;
};

} // namespace xrv
