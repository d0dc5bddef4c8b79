#pragma once

#include "colourconversion.h"

namespace xrv {

/// Codes that are the output's codes stretched, moved or reversed.
class LinearConversion : public ColourConversion
{
public:
    /// e-sRGB of 10 or more bits, whose codes reach beyond black and white (PIMA 7667): what is beyond is cut off.
    static std::unique_ptr<LinearConversion> extendedSRgb(const std::vector<Channel> &channels);
    /// 0 is white: bi-level space 0 of ISO/IEC 15444-2 table M.25.
    static std::unique_ptr<LinearConversion> reversed(const Channel &channel);

    int outputBits() const override { return bits; }
    void convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const override;

private:
    /// cell -> cell * scale + offset
    struct Line
    {
        double scale;
        double offset;
    };
    explicit LinearConversion(int outputBits)
        : bits(outputBits)
    {
    }

    int bits;
    std::vector<Line> lines; ///< one per channel
};

} // namespace xrv
