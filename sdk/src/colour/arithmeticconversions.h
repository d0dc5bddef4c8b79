#pragma once

#include "colourconversion.h"

namespace xrv {

// Conversions of a few multiplications for each cell.

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

/// Ink amounts to red, green and blue, each colour being what its ink and black leave of white: the simple relation, as
/// ISO/IEC 15444-2 table M.25 has no better one for its CMY and CMYK. 0 is no ink.
class CmykConversion : public ColourConversion
{
public:
    /// Cyan, magenta, yellow and, if there are four, black.
    explicit CmykConversion(const std::vector<Channel> &channels);

    int outputBits() const override { return bits; }
    void convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const override;

private:
    /// Part of the light, 0 to 1, that the ink of a cell leaves.
    double lightLeft(std::size_t channel, std::int32_t cell) const;

    int bits;
    std::vector<Channel> channels;
};

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
