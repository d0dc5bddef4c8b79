#include "linearconversion.h"

#include <algorithm>
#include <cmath>

namespace xrv {

std::unique_ptr<LinearConversion> LinearConversion::extendedSRgb(const std::vector<Channel> &channels)
{
    std::unique_ptr<LinearConversion> conversion(new LinearConversion(depthForConversion(channels)));
    for (const Channel &channel : channels) {
        // Black and white of n bits: 384 and 894 of 1023, as in 10 bits, and in step with the depth.
        const double unit = std::ldexp(1.0, channel.bits - 10);
        const double scale = fullScale(conversion->bits) / (510.0 * unit);
        conversion->lines.push_back({scale, (signOffset(channel) - 384.0 * unit) * scale});
    }
    return conversion;
}

std::unique_ptr<LinearConversion> LinearConversion::reversed(const Channel &channel)
{
    std::unique_ptr<LinearConversion> conversion(new LinearConversion(std::min<int>(channel.bits, 31)));
    const double white = fullScale(conversion->bits) - signOffset(channel);
    conversion->lines.push_back({-1.0, white});
    return conversion;
}

void LinearConversion::convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const
{
    const double top = fullScale(bits);
    for (std::size_t channel = 0; channel < lines.size(); ++channel) {
        const Line line = lines[channel];
        for (int x = 0; x < width; ++x) {
            const double value = in[channel][x] * line.scale + line.offset;
            out[channel][x] = static_cast<std::int32_t>(std::min(std::max(value, 0.0), top) + 0.5);
        }
    }
}

} // namespace xrv
