#pragma once

#include "terrain.h"

#include "encode/imagesource.h"

/// What the cells of a sample are.
enum class Bands {
    Colours, ///< red, green and blue of 8 bits, as on a screen
    Sensor   ///< red, green, blue and near infrared of 16 bits, dark but for a few glints, as a satellite delivers them
};

/// The painted terrain as an image to be compressed, somewhere in the Alps with cells of 10 m.
class TerrainSource : public xrv::ImageSource
{
public:
    TerrainSource(int width, int height, Bands bands);

    const xrv::ImageDescription &description() const override { return image; }
    PLK::CError read(const xrv::IntRect &rect, const std::vector<std::int32_t *> &planes) override;
    PLK::CError rewind() override { return {}; }

private:
    const RgbPicture picture;
    const Bands bands;
    xrv::ImageDescription image;
};
