#include "packetlengths.h"

#include <algorithm>

namespace xrv {

std::vector<std::uint32_t> packetLengths(std::vector<MarkerSegment> segments)
{
    const auto isNone = [](const MarkerSegment &s) { return s.marker != Marker::kPLT || s.payload.empty(); };
    segments.erase(std::remove_if(segments.begin(), segments.end(), isNone), segments.end());
    std::stable_sort(segments.begin(), segments.end(),
                     [](const MarkerSegment &a, const MarkerSegment &b) { return a.payload[0] < b.payload[0]; });
    std::vector<std::uint32_t> lengths;
    std::uint32_t value = 0;
    for (const MarkerSegment &segment : segments) {
        // Seven bits a byte; the highest bit says that more follow.
        for (std::size_t i = 1; i < segment.payload.size(); ++i) {
            value = value << 7 | (segment.payload[i] & 0x7F);
            if (!(segment.payload[i] & 0x80)) {
                lengths.push_back(value);
                value = 0;
            }
        }
    }
    return lengths;
}

} // namespace xrv
