#include "syntheticimage.h"

#include <algorithm>
#include <cmath>

using namespace xrv;

namespace {

std::uint32_t noiseAt(int band, int x, int y)
{
    std::uint32_t h = static_cast<std::uint32_t>(x) * 374761393u + static_cast<std::uint32_t>(y) * 668265263u +
                      static_cast<std::uint32_t>(band) * 2246822519u;
    h = (h ^ (h >> 13)) * 1274126177u;
    return h ^ (h >> 16);
}

} // namespace

SyntheticImage::SyntheticImage(int width, int height, int bands, int bits, bool isSigned)
{
    image.width = static_cast<std::uint32_t>(width);
    image.height = static_cast<std::uint32_t>(height);
    for (int band = 0; band < bands; ++band)
        image.bands.push_back({static_cast<std::uint8_t>(bits), isSigned, "Band #" + std::to_string(band + 1)});
    image.colourSpace = bands == 1 ? PLK_COLORSPACE_GREYSCALE : PLK_COLORSPACE_MULTIBAND;
    const double range = std::ldexp(1.0, bits) - 1.0, least = isSigned ? -std::ldexp(1.0, bits - 1) : 0.0;
    cell = [=](int band, int x, int y) {
        const double wave = std::sin(x * 0.05 + band) * std::cos(y * 0.037) * 0.55 + 0.5;
        const double noise = (noiseAt(band, x, y) % 1000 / 1000.0 - 0.5) * 0.02;
        return static_cast<std::int32_t>(std::lround(least + std::clamp(wave + noise, 0.0, 1.0) * range));
    };
}

PLK::CError SyntheticImage::read(const IntRect &rect, const std::vector<std::int32_t *> &planes)
{
    for (std::size_t band = 0; band < planes.size(); ++band) {
        std::int32_t *out = planes[band];
        for (std::int64_t y = rect.y0; y < rect.y1; ++y)
            for (std::int64_t x = rect.x0; x < rect.x1; ++x)
                *out++ = cell(static_cast<int>(band), static_cast<int>(x), static_cast<int>(y));
    }
    return {};
}

std::vector<std::int32_t> SyntheticImage::cells(int band) const
{
    std::vector<std::int32_t> result;
    for (int y = 0; y < static_cast<int>(image.height); ++y)
        for (int x = 0; x < static_cast<int>(image.width); ++x)
            result.push_back(cell(band, x, y));
    return result;
}
