#include "cmykconversion.h"

#include <algorithm>

namespace xrv {

CmykConversion::CmykConversion(const std::vector<Channel> &channels)
    : bits(depthForConversion(channels))
    , channels(channels)
{
}

double CmykConversion::lightLeft(std::size_t channel, std::int32_t cell) const
{
    const Channel &ink = channels[channel];
    return std::clamp(1.0 - (cell + signOffset(ink)) / fullScale(ink.bits), 0.0, 1.0);
}

void CmykConversion::convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const
{
    const double top = fullScale(bits);
    for (int x = 0; x < width; ++x) {
        const double white = channels.size() > 3 ? top * lightLeft(3, in[3][x]) : top;
        for (std::size_t colour = 0; colour < 3; ++colour)
            out[colour][x] = static_cast<std::int32_t>(white * lightLeft(colour, in[colour][x]) + 0.5);
    }
}

} // namespace xrv
