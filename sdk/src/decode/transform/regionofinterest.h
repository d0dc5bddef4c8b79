#pragma once

#include "base/bytes.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Bits by which the region of interest was scaled up (ISO/IEC 15444-1 A.6.3), from Srgn and SPrgn; 0 without.
int regionOfInterestShift(const Bytes &parameters);

/// Brings the region of interest down to the scale of all else (H.1). \a coefficients are doubled, as CodeBlockDecoder
/// gives them.
template <typename Cell> void undoRegionOfInterest(int shift, std::vector<Cell> *coefficients);

} // namespace xrv
