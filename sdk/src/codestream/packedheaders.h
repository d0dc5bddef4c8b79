#pragma once

#include "mainheader.h"

namespace xrv {

/// Packet headers of the tile-part with number \a sequence in the codestream, taken from the main header's PPM marker
/// segments (ISO/IEC 15444-1 A.7.4); empty when there are none for it.
Bytes packedHeadersOfPart(const std::vector<MarkerSegment> &ppm, std::uint32_t sequence);

} // namespace xrv
