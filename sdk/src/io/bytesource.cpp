#include "bytesource.h"

#include <algorithm>

namespace xrv {

std::vector<ByteRange> joinedRanges(std::vector<ByteRange> ranges, std::uint64_t gap)
{
    std::sort(ranges.begin(), ranges.end(), [](const ByteRange &a, const ByteRange &b) { return a.offset < b.offset; });
    std::vector<ByteRange> joined;
    for (const ByteRange &range : ranges) {
        if (range.length == 0)
            continue;
        if (!joined.empty() && range.offset <= joined.back().end() + gap)
            joined.back().length = std::max(joined.back().end(), range.end()) - joined.back().offset;
        else
            joined.push_back(range);
    }
    return joined;
}

PLK::CError ByteSource::prefetch(const std::vector<ByteRange> &, const CancelFlag &)
{
    return {};
}

void ByteSource::remember(const std::string &, const Bytes &)
{
}

bool ByteSource::recallPublished(const std::string &, Bytes *)
{
    return false;
}

bool ByteSource::recall(const std::string &, Bytes *)
{
    return false;
}

PLK::CError ByteSource::read(ByteRange range, Bytes *out, const CancelFlag &cancel)
{
    std::vector<Bytes> parts;
    PLK::CError error = read(std::vector<ByteRange>{range}, cancel, &parts);
    if (!error)
        *out = std::move(parts.front());
    return error;
}

PLK::CError ByteSource::checkRanges(const std::vector<ByteRange> &ranges) const
{
    for (const ByteRange &range : ranges) {
        if (range.length > size() || range.offset > size() - range.length)
            return {PLK_ERR_TRUNCATED, "\"" + name() + "\" ends after " + std::to_string(size()) + " bytes, but " +
                                           std::to_string(range.length) + " bytes at position " +
                                           std::to_string(range.offset) + " are needed."};
    }
    return {};
}

} // namespace xrv
