#include "byterangeset.h"

#include <algorithm>

namespace xrv {

namespace {

/// First of \a ranges that ends after \a offset.
std::size_t firstEndingAfter(const std::vector<ByteRange> &ranges, std::uint64_t offset)
{
    const auto it = std::upper_bound(ranges.begin(), ranges.end(), offset,
                                     [](std::uint64_t value, const ByteRange &range) { return value < range.end(); });
    return static_cast<std::size_t>(it - ranges.begin());
}

} // namespace

std::uint64_t ByteRangeSet::byteCount() const
{
    std::uint64_t count = 0;
    for (const ByteRange &range : held)
        count += range.length;
    return count;
}

void ByteRangeSet::add(const ByteRange &range)
{
    if (range.length == 0)
        return;
    ByteRange joined = range;
    // Those that touch it too.
    std::size_t first = range.offset == 0 ? 0 : firstEndingAfter(held, range.offset - 1);
    std::size_t last = first;
    for (; last < held.size() && held[last].offset <= range.end(); ++last) {
        const std::uint64_t end = std::max(joined.end(), held[last].end());
        joined.offset = std::min(joined.offset, held[last].offset);
        joined.length = end - joined.offset;
    }
    const auto begin = held.begin() + static_cast<std::ptrdiff_t>(first);
    held.insert(held.erase(begin, held.begin() + static_cast<std::ptrdiff_t>(last)), joined);
}

void ByteRangeSet::remove(const ByteRange &range)
{
    if (range.length == 0)
        return;
    const std::size_t first = firstEndingAfter(held, range.offset);
    std::size_t last = first;
    std::vector<ByteRange> rest;
    for (; last < held.size() && held[last].offset < range.end(); ++last) {
        const ByteRange cut = held[last];
        if (cut.offset < range.offset)
            rest.push_back({cut.offset, range.offset - cut.offset});
        if (cut.end() > range.end())
            rest.push_back({range.end(), cut.end() - range.end()});
    }
    const auto begin = held.begin() + static_cast<std::ptrdiff_t>(first);
    const auto after = held.erase(begin, held.begin() + static_cast<std::ptrdiff_t>(last));
    held.insert(after, rest.begin(), rest.end());
}

void ByteRangeSet::remove(const ByteRangeSet &other)
{
    for (const ByteRange &range : other.held)
        remove(range);
}

ByteRangeSet ByteRangeSet::intersected(const ByteRangeSet &other) const
{
    ByteRangeSet common;
    for (const ByteRange &range : other.held) {
        const std::vector<ByteRange> parts = within(range);
        common.held.insert(common.held.end(), parts.begin(), parts.end());
    }
    return common;
}

std::vector<ByteRange> ByteRangeSet::within(const ByteRange &range) const
{
    std::vector<ByteRange> common;
    for (std::size_t i = firstEndingAfter(held, range.offset); i < held.size() && held[i].offset < range.end(); ++i) {
        const std::uint64_t begin = std::max(held[i].offset, range.offset);
        const std::uint64_t end = std::min(held[i].end(), range.end());
        if (begin < end)
            common.push_back({begin, end - begin});
    }
    return common;
}

} // namespace xrv
