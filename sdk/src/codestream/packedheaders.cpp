#include "packedheaders.h"

#include "base/bytecursor.h"

#include <algorithm>

namespace xrv {

Bytes packedHeadersOfPart(const std::vector<MarkerSegment> &ppm, std::uint32_t sequence)
{
    std::vector<const MarkerSegment *> segments;
    for (const MarkerSegment &segment : ppm)
        if (!segment.payload.empty())
            segments.push_back(&segment);
    std::stable_sort(segments.begin(), segments.end(),
                     [](const MarkerSegment *a, const MarkerSegment *b) { return a->payload[0] < b->payload[0]; });
    // A tile-part's headers may go on in the next marker segment.
    Bytes all;
    for (const MarkerSegment *segment : segments)
        all.insert(all.end(), segment->payload.begin() + 1, segment->payload.end());
    ByteCursor in(all.data(), all.size());
    for (std::uint32_t part = 0;; ++part) {
        const std::uint32_t length = in.u32();
        if (!in.ok())
            return {};
        const std::size_t available = std::min<std::size_t>(length, in.remaining());
        if (part == sequence)
            return Bytes(in.here(), in.here() + available);
        in.skip(length);
    }
}

} // namespace xrv
