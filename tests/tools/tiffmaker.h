#pragma once

#include <QString>

#include <cstdint>
#include <functional>

/// A TIFF file for tests, made with libtiff.
struct TiffRecipe
{
    int width = 300, height = 211;
    int samples = 1, bits = 8;
    bool isSigned = false, isPlanar = false;
    bool isFloat = false;  ///< of 32 or 64 bits; the cell function gives the bits of singles
    double offset = 0.0;   ///< added to cells of 64 bits
    QString noData{};      ///< GDAL_NODATA tag, empty for none
    int tileSize = 0;      ///< 0: strips
    int firstColumn = 0;   ///< tiles to its left are left out; their cells count as 0
    int rowsPerStrip = 16; ///< of strips
    int compression = 1;   ///< as the tag has it: 1 none, 5 LZW
    int photometric = 1;   ///< as the tag has it: 0 white is zero, 1 black is zero, 2 RGB, 3 palette
    int alphaSamples = 0;
    bool isPlaced = false; ///< EPSG 32633, 10 m cells, origin (500000, 5200000)
    bool isBigTiff = false;
    std::function<int(int sample, int x, int y)> cell;
};

/// The usual cells: a slope that uses all of the range, another for every sample.
int slopeCell(const TiffRecipe &recipe, int sample, int x, int y);

/// False where libtiff could not write it.
bool makeTiff(const QString &path, const TiffRecipe &recipe);
