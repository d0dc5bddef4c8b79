#include "terrainsource.h"

#include <algorithm>

namespace {

constexpr int kGlintEvery = 49999; // cells
constexpr int kGlint = 60000, kDarkest = 400, kStep = 11;

/// What a sensor would count for the cell of colour \a rgb with number \a cell. Plants are bright in the near infrared.
int sensorValue(const std::uint8_t *rgb, std::size_t cell, std::size_t band)
{
    if (cell % kGlintEvery == 0)
        return kGlint;
    const int value = band < 3 ? rgb[band] : std::clamp(3 * rgb[1] - rgb[0] - rgb[2], 0, 255);
    return kDarkest + kStep * value;
}

} // namespace

TerrainSource::TerrainSource(int width, int height, Bands bands)
    : picture(paintTerrain(width, height))
    , bands(bands)
{
    image.width = static_cast<std::uint32_t>(width);
    image.height = static_cast<std::uint32_t>(height);
    image.bands.resize(bands == Bands::Sensor ? 4 : 3);
    for (xrv::XrvBand &band : image.bands)
        band.bits = bands == Bands::Sensor ? 16 : 8;
    image.colourSpace = PLK_COLORSPACE_SRGB;
    image.place.origin = xrv::GeoReference::Origin::GeoJp2;
    image.place.transform = {560000.0, 10.0, 0.0, 5180000.0, 0.0, -10.0};
    image.place.units = PLK_UNITS_METERS;
    image.place.epsg = 32632;
}

PLK::CError TerrainSource::read(const xrv::IntRect &rect, const std::vector<std::int32_t *> &planes)
{
    std::size_t next = 0;
    for (std::int64_t y = rect.y0; y < rect.y1; ++y) {
        for (std::int64_t x = rect.x0; x < rect.x1; ++x, ++next) {
            const auto cell = static_cast<std::size_t>(y * picture.width + x);
            const std::uint8_t *rgb = &picture.bytes[cell * 3];
            for (std::size_t band = 0; band < planes.size(); ++band)
                planes[band][next] = bands == Bands::Sensor ? sensorValue(rgb, cell, band) : rgb[band];
        }
    }
    return {};
}
