#pragma once

#include "colourconversion.h"

#include "base/bytes.h"

namespace xrv {

/// CIELab (enumerated space 14, ISO/IEC 15444-2 M.11.7.4) to sRGB; what the display cannot show is cut off.
class LabConversion : public ColourConversion
{
public:
    /// \a parameters is the EP field of the colour specification box; empty for the default ranges and offsets. Null
    /// where they make no sense. The illuminant is left aside: the display's white stands for any.
    static std::unique_ptr<LabConversion> make(const Bytes &parameters, const std::vector<Channel> &channels);

    int outputBits() const override { return bits; }
    void convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const override;

private:
    /// cell -> (cell - offset) * scale, in units of L*, a* and b*.
    struct Scale
    {
        float offset;
        float scale;
    };
    explicit LabConversion(int outputBits);
    std::int32_t encoded(float light) const;

    int bits;
    std::vector<Scale> scales;
    std::vector<float> codes; ///< output for equal steps of light from 0 to 1
};

} // namespace xrv
