#pragma once

#include "mainheader.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Packet lengths of the PLT marker segments of one tile-part, bytes, by the order of their indexes (ISO/IEC 15444-1
/// A.7.3). Other segments are passed over.
std::vector<std::uint32_t> packetLengths(std::vector<MarkerSegment> segments);

} // namespace xrv
