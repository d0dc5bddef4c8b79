#include "packedheaders.h"

#include "base/bytecursor.h"

#include <algorithm>

namespace xrv {

Bytes joinedByIndex(std::vector<MarkerSegment> segments)
{
    segments.erase(std::remove_if(segments.begin(), segments.end(),
                                  [](const MarkerSegment &segment) { return segment.payload.empty(); }),
                   segments.end());
    std::stable_sort(segments.begin(), segments.end(),
                     [](const MarkerSegment &a, const MarkerSegment &b) { return a.payload[0] < b.payload[0]; });
    Bytes all;
    for (const MarkerSegment &segment : segments)
        all.insert(all.end(), segment.payload.begin() + 1, segment.payload.end());
    return all;
}

/// A tile-part's headers may go on in the next marker segment: their lengths stand in what all of them make together.
PackedHeaders::PackedHeaders(std::vector<MarkerSegment> ppm)
    : all(joinedByIndex(std::move(ppm)))
{
    ByteCursor in(all.data(), all.size());
    for (std::uint32_t length = in.u32(); in.ok(); length = in.u32()) {
        parts.push_back({all.size() - in.remaining(), std::min<std::uint64_t>(length, in.remaining())});
        in.skip(length);
    }
}

Bytes PackedHeaders::ofPart(std::uint32_t sequence) const
{
    if (sequence >= parts.size())
        return {};
    const auto begin = all.begin() + static_cast<std::ptrdiff_t>(parts[sequence].offset);
    return {begin, begin + static_cast<std::ptrdiff_t>(parts[sequence].length)};
}

} // namespace xrv
