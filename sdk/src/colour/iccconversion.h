#pragma once

#include "colourconversion.h"

#include "base/bytes.h"

#include <memory>
#include <vector>

namespace xrv {

/// Colours of a profile to sRGB, or its greys to those of sRGB, in 8 bits, or in 16 where a channel has more than 8.
class IccConversion : public ColourConversion
{
public:
    /// Number of channels that a profile describes: 1, 3 or 4; 0 where it describes none that can be converted.
    static int channelCount(const Bytes &profile);
    /// Null where the profile is damaged or is none of \a channels. Values of unequal depths are stretched to one
    /// depth.
    static std::unique_ptr<IccConversion> fromProfile(const Bytes &profile, const std::vector<Channel> &channels);
    ~IccConversion() override;
    int outputBits() const override;
    void convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const override;

    /// It changes no cell by more than one part in 255: the profile is sRGB or nearly so.
    bool isIdentity() const;

private:
    struct Private;
    explicit IccConversion(std::unique_ptr<Private> p);
    std::unique_ptr<Private> d;
};

} // namespace xrv
