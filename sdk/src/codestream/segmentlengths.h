#pragma once

#include "precinct.h"

namespace xrv {

/// Passes of a set in a high-throughput code-block: cleanup and two refinements (ISO/IEC 15444-15 clause 7).
constexpr int kPassesOfSet = 3;

/// Reads how many bytes a packet has of a code-block that takes \a passes more passes (ISO/IEC 15444-1 B.10.7, ISO/IEC
/// 15444-15 annex B), and adds a piece for each codeword segment; their layer is left to the caller. \a style is that
/// of the tile-component; the lengths tell how the block itself is coded where several ways are possible. False when
/// they contradict themselves.
bool readSegmentLengths(PacketBits &bits, std::uint8_t style, int passes, CodeBlockState *codeBlock);

} // namespace xrv
