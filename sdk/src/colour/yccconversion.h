#pragma once

#include "colourconversion.h"

namespace xrv {

/// Luma and chroma to red, green and blue with the coefficients of ITU-R BT.601, as sYCC has them (IEC 61966-2-1
/// amendment 1 annex F.2, ISO/IEC 15444-1 I.5.3.3). Chroma with a sign is centred on 0, without one on half its range.
class YccConversion : public ColourConversion
{
public:
    enum class Range {
        Full,   ///< sYCC, e-sYCC, YCbCr(2): all codes are used
        Limited ///< YCbCr(1), YCbCr(3): 16 to 235 and 16 to 240 in 8 bits
    };
    /// Luma, blue and red difference.
    YccConversion(const std::vector<Channel> &channels, Range range);

    int outputBits() const override { return bits; }
    void convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const override;

private:
    /// cell -> (cell - offset) * scale, in units of the output.
    struct Scale
    {
        double offset = 0.0;
        double scale = 1.0;
    };
    template <typename Real> void convertWith(const std::int32_t *const *in, int width, std::int32_t *const *out) const;

    int bits;
    Scale scales[3];
};

} // namespace xrv
