#include "arithmeticconversions.h"

#include <algorithm>
#include <cmath>

namespace xrv {

YccConversion::YccConversion(const std::vector<Channel> &channels, Range range)
    : bits(std::max<int>(8, std::min<int>(channels[0].bits, 31)))
{
    for (std::size_t i = 0; i < 3; ++i) {
        const Channel &channel = channels[i];
        const bool isLuma = i == 0;
        const double step = std::ldexp(1.0, channel.bits - 8);
        const double codes = range == Range::Full ? fullScale(channel.bits) : (isLuma ? 219.0 : 224.0) * step;
        const double black = range == Range::Full ? 0.0 : 16.0 * step;
        const double zero = isLuma ? black : std::ldexp(1.0, channel.bits - 1);
        scales[i] = {zero - signOffset(channel), fullScale(bits) / codes};
    }
}

template <typename Real>
void YccConversion::convertWith(const std::int32_t *const *in, int width, std::int32_t *const *out) const
{
    const Real top = static_cast<Real>(fullScale(bits));
    const auto cell = [top](Real value) {
        return static_cast<std::int32_t>(std::min(std::max(value, Real(0)), top) + Real(0.5));
    };
    Real offset[3], scale[3];
    for (int i = 0; i < 3; ++i) {
        offset[i] = static_cast<Real>(scales[i].offset);
        scale[i] = static_cast<Real>(scales[i].scale);
    }
    for (int x = 0; x < width; ++x) {
        const Real luma = (static_cast<Real>(in[0][x]) - offset[0]) * scale[0];
        const Real blue = (static_cast<Real>(in[1][x]) - offset[1]) * scale[1];
        const Real red = (static_cast<Real>(in[2][x]) - offset[2]) * scale[2];
        out[0][x] = cell(luma + Real(1.402) * red);
        out[1][x] = cell(luma - Real(0.344136) * blue - Real(0.714136) * red);
        out[2][x] = cell(luma + Real(1.772) * blue);
    }
}

void YccConversion::convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const
{
    if (bits <= 16)
        convertWith<float>(in, width, out);
    else
        convertWith<double>(in, width, out);
}

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
