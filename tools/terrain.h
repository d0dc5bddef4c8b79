#pragma once

#include <cstdint>
#include <vector>

/// An 8-bit picture: red, green and blue bytes, rows packed.
struct RgbPicture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;
};

/// Paints an invented landscape as a relief map with the light from the north-west; always the same for the same size.
RgbPicture paintTerrain(int width, int height);
