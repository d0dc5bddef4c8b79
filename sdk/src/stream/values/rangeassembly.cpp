#include "rangeassembly.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace xrv {

RangeAssembly::RangeAssembly(const std::vector<ByteRange> &ranges, std::vector<Bytes> *out)
    : ranges(ranges)
    , order(ranges.size())
    , out(out)
    , open(ranges)
{
    out->assign(ranges.size(), {});
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        (*out)[i].resize(static_cast<std::size_t>(ranges[i].length));
        longest = std::max(longest, ranges[i].length);
    }
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return ranges[a].offset < ranges[b].offset; });
}

void RangeAssembly::add(std::uint64_t offset, const std::uint8_t *data, std::uint64_t length)
{
    const std::uint64_t end = offset + length;
    const std::uint64_t earliest = offset > longest ? offset - longest : 0; // nothing before reaches here
    auto it = std::lower_bound(order.begin(), order.end(), earliest,
                               [&](std::size_t index, std::uint64_t value) { return ranges[index].offset < value; });
    for (; it != order.end() && ranges[*it].offset < end; ++it) {
        const ByteRange &range = ranges[*it];
        const std::uint64_t from = std::max(range.offset, offset), to = std::min(range.end(), end);
        if (from < to)
            std::memcpy((*out)[*it].data() + (from - range.offset), data + (from - offset),
                        static_cast<std::size_t>(to - from));
    }
    open.remove(ByteRange{offset, length});
}

} // namespace xrv
