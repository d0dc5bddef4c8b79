#include "quantization.h"

#include <cmath>

namespace xrv {

BandQuantization bandQuantization(const Bytes &parameters, bool isReversible, int depth, int resolution,
                                  int orientation)
{
    if (parameters.empty())
        return {};
    const int style = parameters[0] & 31, guardBits = parameters[0] >> 5;
    const std::size_t band = resolution == 0 ? 0 : 3 * (resolution - 1) + orientation;
    int exponent = 0, mantissa = 0;
    if (style == 0) {
        if (1 + band >= parameters.size())
            return {};
        exponent = parameters[1 + band] >> 3;
    } else {
        // Derived (style 1): the exponent falls by one with every resolution above the first (equation E-5).
        const std::size_t at = style == 1 ? 1 : 1 + 2 * band;
        if (at + 1 >= parameters.size())
            return {};
        const int word = parameters[at] << 8 | parameters[at + 1];
        exponent = word >> 11;
        mantissa = word & 0x7FF;
        if (style == 1)
            exponent -= resolution == 0 ? 0 : resolution - 1;
    }
    BandQuantization result;
    result.magnitudeBits = guardBits + exponent - 1;
    if (!isReversible) {
        const int gain = orientation == 0 ? 0 : orientation == 3 ? 2 : 1; // table E.1
        result.stepSize = std::ldexp(1.0f + static_cast<float>(mantissa) / 2048.0f, depth + gain - exponent);
    }
    return result;
}

} // namespace xrv
