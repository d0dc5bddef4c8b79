#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// An 8-bit picture read from a TIFF file.
struct TiffPicture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb; ///< red, green and blue bytes, rows packed; empty when the file cannot be read
};

TiffPicture readTiffPicture(const std::string &path);
