#pragma once

#include "codestream/mainheader.h"

namespace xrv {

/// Quantization of one subband (ISO/IEC 15444-1 E.1).
struct BandQuantization
{
    int magnitudeBits = 0; ///< Mb, equation E-2
    float stepSize = 1.0f; ///< equation E-3; 1 for reversible coding
};

/// From Sqcd and SPqcd (A.6.4). \a resolution 0 is the lowest, \a orientation 0 LL, 1 HL, 2 LH, 3 HH, \a depth the
/// component's bits. Parameters that are too short give 0 bits.
BandQuantization bandQuantization(const Bytes &parameters, bool isReversible, int depth, int resolution,
                                  int orientation);

} // namespace xrv
