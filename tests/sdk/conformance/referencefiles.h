#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Cells of one component as a PGX file holds them (ISO/IEC 15444-4 annex B.2.1).
struct PgxImage
{
    int width = 0;
    int height = 0;
    int bits = 0;
    bool isSigned = false;
    std::vector<std::int64_t> cells; ///< rows packed; empty when the file cannot be read
};

PgxImage readPgx(const std::string &path);

/// An 8-bit picture read from a TIFF file.
struct TiffPicture
{
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb; ///< red, green and blue bytes, rows packed; empty when the file cannot be read
};

TiffPicture readTiffPicture(const std::string &path);
