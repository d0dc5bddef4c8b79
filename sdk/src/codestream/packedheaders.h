#pragma once

#include "mainheader.h"

namespace xrv {

/// The contents of \a segments, each without its index (Zppm, Zppt), in the order of these.
Bytes joinedByIndex(std::vector<MarkerSegment> segments);

/// Packet headers of all tile-parts, from the main header's PPM marker segments (ISO/IEC 15444-1 A.7.4).
class PackedHeaders
{
public:
    explicit PackedHeaders(std::vector<MarkerSegment> ppm);
    /// Those of the tile-part with number \a sequence in the codestream; empty when there are none for it.
    Bytes ofPart(std::uint32_t sequence) const;

private:
    Bytes all;
    std::vector<ByteRange> parts; ///< in all
};

} // namespace xrv
