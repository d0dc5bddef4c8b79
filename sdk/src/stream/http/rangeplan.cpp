#include "rangeplan.h"

#include <algorithm>

namespace xrv {

namespace {

constexpr std::size_t kMaxRangesPerRequest = 100; // servers refuse several hundred
constexpr std::size_t kMaxRangeText = 3000;       // header lines beyond 4 KB are refused here and there
constexpr std::uint64_t kMaxPerRequest = std::uint64_t(8) << 20;

std::string rangeText(const ByteRange &range)
{
    return std::to_string(range.offset) + '-' + std::to_string(range.end() - 1);
}

/// None longer than what one request may ask for.
std::vector<ByteRange> cutToSize(const std::vector<ByteRange> &ranges)
{
    std::vector<ByteRange> cut;
    for (ByteRange range : ranges) {
        for (; range.length > kMaxPerRequest; range.offset += kMaxPerRequest, range.length -= kMaxPerRequest)
            cut.push_back({range.offset, kMaxPerRequest});
        cut.push_back(range);
    }
    return cut;
}

std::vector<RangeGroup> groupsOf(const std::vector<ByteRange> &ranges)
{
    std::vector<RangeGroup> groups;
    std::size_t textLength = 0;
    std::uint64_t bytes = 0;
    for (const ByteRange &range : ranges) {
        const std::size_t length = rangeText(range).size() + 1;
        const bool fits = !groups.empty() && groups.back().ranges.size() < kMaxRangesPerRequest &&
                          textLength + length <= kMaxRangeText && bytes + range.length <= kMaxPerRequest;
        if (!fits) {
            groups.push_back({});
            textLength = 0;
            bytes = 0;
        }
        groups.back().ranges.push_back(range);
        textLength += length;
        bytes += range.length;
    }
    return groups;
}

} // namespace

std::uint64_t RangeGroup::byteCount() const
{
    std::uint64_t count = 0;
    for (const ByteRange &range : ranges)
        count += range.length;
    return count;
}

std::string RangeGroup::text() const
{
    std::string text;
    if (isWholeFile)
        return text;
    for (const ByteRange &range : ranges)
        text += (text.empty() ? "" : ",") + rangeText(range);
    return text;
}

RangeGroup wholeFile(std::uint64_t length)
{
    RangeGroup group;
    group.ranges.push_back({0, length});
    group.isWholeFile = true;
    return group;
}

std::vector<RangeGroup> planRequests(const ByteRangeSet &lacking, ServerTraits::Answer severalRanges,
                                     std::uint64_t requestGap)
{
    if (severalRanges == ServerTraits::Answer::No) {
        std::vector<RangeGroup> groups;
        for (const ByteRange &range : cutToSize(joinedRanges(lacking.ranges(), requestGap)))
            groups.push_back({{range}, false});
        return groups;
    }
    std::vector<RangeGroup> groups = groupsOf(cutToSize(joinedRanges(lacking.ranges(), kPartGap)));
    const auto isMultiple = [](const RangeGroup &group) { return group.ranges.size() > 1; };
    if (severalRanges == ServerTraits::Answer::Unknown && std::any_of(groups.begin(), groups.end(), isMultiple))
        groups.resize(1);
    return groups;
}

} // namespace xrv
