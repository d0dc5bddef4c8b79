#pragma once

#include "colourconversion.h"

namespace xrv {

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

} // namespace xrv
