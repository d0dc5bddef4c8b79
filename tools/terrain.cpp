#include "terrain.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double kSeaLevel = 0.42;
constexpr double kSteepness = 260.0; ///< how strongly slopes catch the light

/// Pseudo-random number in [0, 1) for a point of the integer lattice.
double latticeNoise(int x, int y)
{
    auto h = static_cast<std::uint32_t>(x) * 374761393u + static_cast<std::uint32_t>(y) * 668265263u;
    h = (h ^ (h >> 13)) * 1274126177u;
    h ^= h >> 16;
    return h / 4294967296.0;
}

double smoothStep(double t)
{
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

double smoothNoise(double x, double y)
{
    const int x0 = static_cast<int>(std::floor(x)), y0 = static_cast<int>(std::floor(y));
    const double u = smoothStep(x - x0), v = smoothStep(y - y0);
    const double top = latticeNoise(x0, y0) * (1.0 - u) + latticeNoise(x0 + 1, y0) * u;
    const double bottom = latticeNoise(x0, y0 + 1) * (1.0 - u) + latticeNoise(x0 + 1, y0 + 1) * u;
    return top * (1.0 - v) + bottom * v;
}

/// Height in [0, 1]: octaves of noise, with ridges where it is high.
double height(double x, double y)
{
    double sum = 0.0, weight = 0.5, frequency = 1.0;
    for (int octave = 0; octave < 9; ++octave) {
        sum += weight * smoothNoise(x * frequency, y * frequency);
        weight *= 0.5;
        frequency *= 2.03;
    }
    const double ridge = 1.0 - std::abs(2.0 * smoothNoise(x * 1.7 + 31.0, y * 1.7 + 17.0) - 1.0);
    return 0.8 * sum + 0.2 * ridge * sum;
}

struct Colour
{
    double red, green, blue;
};

Colour mix(const Colour &a, const Colour &b, double t)
{
    return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t, a.blue + (b.blue - a.blue) * t};
}

Colour heightColour(double h)
{
    struct Stop
    {
        double height;
        Colour colour;
    };
    static constexpr std::array<Stop, 8> kStops{{{0.20, {22, 58, 110}},
                                                 {kSeaLevel - 0.005, {88, 146, 190}},
                                                 {kSeaLevel, {214, 205, 160}},
                                                 {0.45, {120, 150, 84}},
                                                 {0.54, {82, 122, 66}},
                                                 {0.62, {142, 128, 92}},
                                                 {0.70, {150, 140, 132}},
                                                 {0.76, {246, 248, 250}}}};
    if (h <= kStops.front().height)
        return kStops.front().colour;
    for (std::size_t i = 1; i < kStops.size(); ++i) {
        const Stop &low = kStops[i - 1], &high = kStops[i];
        if (h < high.height)
            return mix(low.colour, high.colour, (h - low.height) / (high.height - low.height));
    }
    return kStops.back().colour;
}

/// Brightness of a slope; \a east and \a south are the height's differences per unit of the landscape.
double light(double east, double south)
{
    const double length = std::sqrt(east * east + south * south + 1.0);
    constexpr double kWest = 0.5, kNorth = 0.5, kUp = 0.70710678;
    return std::clamp((kWest * east + kNorth * south + kUp) / length, 0.0, 1.0) / kUp;
}

std::uint8_t toByte(double value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0.0, 255.0));
}

std::vector<double> heightRow(int y, int width, double scale)
{
    std::vector<double> row(static_cast<std::size_t>(width) + 1);
    for (std::size_t x = 0; x < row.size(); ++x)
        row[x] = height(static_cast<double>(x) * scale + 4.0, y * scale + 9.0);
    return row;
}

} // namespace

RgbPicture paintTerrain(int width, int height)
{
    RgbPicture picture{width, height, {}};
    picture.bytes.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    const double scale = 6.0 / width;
    std::vector<double> row = heightRow(0, width, scale);
    for (int y = 0; y < height; ++y) {
        std::vector<double> next = heightRow(y + 1, width, scale);
        for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
            const bool isSea = row[x] < kSeaLevel;
            const double east = (row[x + 1] - row[x]) * kSteepness, south = (next[x] - row[x]) * kSteepness;
            const double brightness = isSea ? 1.0 : 0.35 + 0.65 * light(east, south);
            const Colour colour = heightColour(row[x]);
            for (const double channel : {colour.red, colour.green, colour.blue})
                picture.bytes.push_back(toByte(channel * brightness));
        }
        row = std::move(next);
    }
    return picture;
}
