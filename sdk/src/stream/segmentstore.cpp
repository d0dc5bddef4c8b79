#include "segmentstore.h"

#include <algorithm>
#include <iterator>

namespace xrv {

namespace {

constexpr std::uint64_t kMaxSegment = 65536; // what goes at once
constexpr std::size_t kMaxNumbers = 10000;

} // namespace

SegmentStore &SegmentStore::instance()
{
    static auto *store = new SegmentStore;
    return *store;
}

SegmentStore::SegmentStore(std::uint64_t budgetBytes)
    : budget(budgetBytes)
{
}

std::uint64_t SegmentStore::fileNumber(const std::string &identity)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (numbers.size() >= kMaxNumbers) // numbers are not used again, so that old ones stay right
        numbers.clear();
    const auto [it, isNew] = numbers.emplace(identity, lastNumber + 1);
    lastNumber += isNew ? 1 : 0;
    return it->second;
}

/// Calls \a visitor with every segment that shares bytes with \a range, in file order, and makes it the newest of its
/// list. The visitor may pin it: only afterwards is it known which list that is.
template <typename Visit> void SegmentStore::visit(std::uint64_t file, const ByteRange &range, Visit visitor)
{
    const auto found = files.find(file);
    if (found == files.end())
        return;
    auto it = found->second.upper_bound(range.offset);
    if (it != found->second.begin() && std::prev(it)->first + std::prev(it)->second.bytes.size() > range.offset)
        --it;
    for (; it != found->second.end() && it->first < range.end(); ++it) {
        visitor(it->first, it->second);
        std::list<Place> &list = it->second.pin != 0 ? pinnedUses : uses;
        list.splice(list.begin(), list, it->second.use);
    }
}

void SegmentStore::put(std::uint64_t file, std::uint64_t offset, const std::uint8_t *data, std::uint64_t length,
                       std::uint64_t pin)
{
    const std::lock_guard<std::mutex> lock(mutex);
    // Segments never overlap: of what comes twice, the bytes that are here already stay. They are of the same version.
    ByteRangeSet lacking({ByteRange{offset, length}});
    visit(file, {offset, length}, [&](std::uint64_t from, Segment &segment) {
        lacking.remove(ByteRange{from, segment.bytes.size()});
        if (pin != 0)
            setPin(segment, pin);
    });
    Segments &segments = files[file];
    for (const ByteRange &range : lacking.ranges())
        insert(segments, file, range, data + (range.offset - offset), pin);
    evict();
}

void SegmentStore::insert(Segments &segments, std::uint64_t file, const ByteRange &range, const std::uint8_t *data,
                          std::uint64_t pin)
{
    for (std::uint64_t done = 0; done < range.length; done += kMaxSegment) {
        const std::uint64_t count = std::min(kMaxSegment, range.length - done);
        Segment segment;
        segment.bytes.assign(data + done, data + done + count);
        uses.push_front({file, range.offset + done});
        segment.use = uses.begin();
        used += count;
        setPin(segments.emplace(range.offset + done, std::move(segment)).first->second, pin);
    }
}

/// Segments with a pin stand in a list of their own: what was fetched ahead for one view must not drive out itself
/// before it is read. Splicing leaves the iterators valid that the segments hold.
void SegmentStore::setPin(Segment &segment, std::uint64_t pin)
{
    const std::uint64_t size = segment.bytes.size();
    if (segment.pin == 0 && pin != 0) {
        pinnedUses.splice(pinnedUses.begin(), uses, segment.use);
        pinned += size;
    } else if (segment.pin != 0 && pin == 0) {
        uses.splice(uses.begin(), pinnedUses, segment.use);
        pinned -= size;
    }
    segment.pin = pin;
}

void SegmentStore::collect(std::uint64_t file, RangeAssembly *assembly)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const std::vector<ByteRange> wanted = assembly->lacking().ranges(); // a copy: what is added goes from the original
    for (const ByteRange &range : wanted)
        visit(file, range, [&](std::uint64_t offset, const Segment &segment) {
            const std::uint64_t from = std::max(offset, range.offset);
            const std::uint64_t to = std::min<std::uint64_t>(offset + segment.bytes.size(), range.end());
            assembly->add(from, segment.bytes.data() + (from - offset), to - from);
        });
}

ByteRangeSet SegmentStore::missing(std::uint64_t file, const std::vector<ByteRange> &ranges, std::uint64_t pin)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ByteRangeSet missing(ranges);
    const std::vector<ByteRange> wanted = missing.ranges();
    for (const ByteRange &range : wanted)
        visit(file, range, [&](std::uint64_t offset, Segment &segment) {
            missing.remove(ByteRange{offset, segment.bytes.size()});
            if (pin != 0)
                setPin(segment, pin);
        });
    return missing;
}

void SegmentStore::release(std::uint64_t file, std::uint64_t pin)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = files.find(file);
    if (found == files.end())
        return;
    for (auto &[offset, segment] : found->second)
        if (segment.pin == pin) // what was pinned anew since then stays
            setPin(segment, 0);
    evict();
}

/// Pinned bytes count within the budget too, so that they leave less room for the others, and have a ceiling of their
/// own: a single view may want more than there is memory for.
void SegmentStore::evict()
{
    while (used > budget && !uses.empty())
        removeOldest(&uses);
    while (pinned > kMaxPinned)
        removeOldest(&pinnedUses);
}

void SegmentStore::removeOldest(std::list<Place> *list)
{
    const Place place = list->back();
    const auto file = files.find(place.file);
    const auto segment = file->second.find(place.offset);
    const std::uint64_t size = segment->second.bytes.size();
    used -= size;
    if (segment->second.pin != 0)
        pinned -= size;
    list->pop_back();
    file->second.erase(segment);
    if (file->second.empty())
        files.erase(file);
}

void SegmentStore::drop(std::uint64_t file)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = files.find(file);
    if (found == files.end())
        return;
    for (auto &[offset, segment] : found->second) {
        setPin(segment, 0);
        used -= segment.bytes.size();
        uses.erase(segment.use);
    }
    files.erase(found);
}

void SegmentStore::clear()
{
    const std::lock_guard<std::mutex> lock(mutex);
    files.clear();
    uses.clear();
    pinnedUses.clear();
    used = pinned = 0;
}

std::uint64_t SegmentStore::usedBytes() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return used;
}

} // namespace xrv
