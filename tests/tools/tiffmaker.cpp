#include "tiffmaker.h"

#include <tiffio.h>

#include <cstring>
#include <vector>

namespace {

constexpr std::uint32_t kPixelScale = 33550, kTiePoints = 33922, kGeoKeys = 34735, kNoData = 42113;

void registerGeoTags(TIFF *tiff)
{
    static char scaleName[] = "ModelPixelScale", tieName[] = "ModelTiepoint", keysName[] = "GeoKeyDirectory",
                noDataName[] = "GDALNoData";
    const TIFFFieldInfo fields[] = {{kPixelScale, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1, scaleName},
                                    {kTiePoints, -1, -1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 1, tieName},
                                    {kGeoKeys, -1, -1, TIFF_SHORT, FIELD_CUSTOM, 1, 1, keysName},
                                    {kNoData, -1, -1, TIFF_ASCII, FIELD_CUSTOM, 1, 0, noDataName}};
    TIFFMergeFieldInfo(tiff, fields, 4);
}

void place(TIFF *tiff)
{
    const double scale[] = {10.0, 10.0, 0.0}, tie[] = {0.0, 0.0, 0.0, 500000.0, 5200000.0, 0.0};
    const std::uint16_t keys[] = {1, 1, 0, 3, 1024, 0, 1, 1, 1025, 0, 1, 1, 3072, 0, 1, 32633};
    TIFFSetField(tiff, kPixelScale, 3, scale);
    TIFFSetField(tiff, kTiePoints, 6, tie);
    TIFFSetField(tiff, kGeoKeys, 16, keys);
}

void setTags(TIFF *tiff, const TiffRecipe &recipe)
{
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, recipe.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, recipe.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, recipe.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, recipe.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT,
                 recipe.isFloat    ? SAMPLEFORMAT_IEEEFP
                 : recipe.isSigned ? SAMPLEFORMAT_INT
                                   : SAMPLEFORMAT_UINT);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, recipe.isPlanar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, recipe.photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, recipe.compression);
    if (recipe.alphaSamples > 0) {
        const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    }
    if (recipe.photometric == PHOTOMETRIC_PALETTE) {
        const int count = 1 << recipe.bits;
        std::vector<std::uint16_t> red(std::size_t(count), 0), green = red, blue = red;
        for (int i = 0; i < count; ++i) {
            red[std::size_t(i)] = std::uint16_t(i * 257);
            green[std::size_t(i)] = std::uint16_t((255 - i) * 257);
            blue[std::size_t(i)] = std::uint16_t(i / 2 * 257);
        }
        TIFFSetField(tiff, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
    }
    registerGeoTags(tiff);
    if (!recipe.noData.isEmpty())
        TIFFSetField(tiff, kNoData, recipe.noData.toLatin1().constData());
    if (recipe.isPlaced)
        place(tiff);
}

/// Adds the lowest \a bits of \a value, highest first, to a row that has \a place bits.
void addBits(std::vector<std::uint8_t> *row, std::size_t place, int bits, int value)
{
    for (int bit = bits - 1; bit >= 0; --bit, ++place) {
        if (place % 8 == 0)
            row->push_back(0);
        row->back() = static_cast<std::uint8_t>(row->back() | (value >> bit & 1) << (7 - place % 8));
    }
}

template <typename Number> void addNumber(std::vector<std::uint8_t> *row, Number number)
{
    row->resize(row->size() + sizeof number);
    std::memcpy(&(*row)[row->size() - sizeof number], &number, sizeof number);
}

/// Cells of [x0, x0 + width) x [y0, y0 + height); those beyond the image are those of its edge.
std::vector<std::uint8_t> pieceOf(const TiffRecipe &recipe, int plane, int x0, int y0, int width, int height)
{
    const int together = recipe.isPlanar ? 1 : recipe.samples;
    std::vector<std::uint8_t> bytes;
    for (int y = y0; y < y0 + height; ++y) {
        std::vector<std::uint8_t> row;
        std::size_t place = 0;
        for (int x = x0; x < x0 + width; ++x) {
            for (int i = 0; i < together; ++i) {
                const int value = recipe.cell(plane + i, std::min(x, recipe.width - 1), std::min(y, recipe.height - 1));
                if (recipe.bits == 16) {
                    addNumber(&row, static_cast<std::uint16_t>(value));
                } else if (recipe.bits == 32) {
                    addNumber(&row, value);
                } else if (recipe.bits == 64) {
                    float single;
                    std::memcpy(&single, &value, sizeof single);
                    addNumber(&row, recipe.offset + double(single));
                } else {
                    addBits(&row, place, recipe.bits, value);
                    place += std::size_t(recipe.bits);
                }
            }
        }
        bytes.insert(bytes.end(), row.begin(), row.end());
    }
    return bytes;
}

bool writeTiles(TIFF *tiff, const TiffRecipe &recipe)
{
    const int size = recipe.tileSize;
    TIFFSetField(tiff, TIFFTAG_TILEWIDTH, size);
    TIFFSetField(tiff, TIFFTAG_TILELENGTH, size);
    for (int plane = 0; plane < (recipe.isPlanar ? recipe.samples : 1); ++plane)
        for (int y = 0; y < recipe.height; y += size)
            for (int x = 0; x < recipe.width; x += size) {
                if (x < recipe.firstColumn)
                    continue;
                std::vector<std::uint8_t> tile = pieceOf(recipe, plane, x, y, size, size);
                if (TIFFWriteTile(tiff, tile.data(), std::uint32_t(x), std::uint32_t(y), 0, std::uint16_t(plane)) < 0)
                    return false;
            }
    return true;
}

bool writeStrips(TIFF *tiff, const TiffRecipe &recipe)
{
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, recipe.rowsPerStrip);
    for (int plane = 0; plane < (recipe.isPlanar ? recipe.samples : 1); ++plane)
        for (int y = 0; y < recipe.height; ++y) {
            std::vector<std::uint8_t> row = pieceOf(recipe, plane, 0, y, recipe.width, 1);
            if (TIFFWriteScanline(tiff, row.data(), std::uint32_t(y), std::uint16_t(plane)) < 0)
                return false;
        }
    return true;
}

} // namespace

int slopeCell(const TiffRecipe &recipe, int sample, int x, int y)
{
    const int range = (1 << recipe.bits) - 1;
    const int value = (x * 97 + y * 131 + sample * 1000 + x * y) * (recipe.bits > 8 ? 37 : 1) & range;
    return recipe.isSigned ? value - (1 << (recipe.bits - 1)) : value;
}

bool makeTiff(const QString &path, const TiffRecipe &recipe)
{
    TIFF *tiff = TIFFOpen(path.toUtf8().constData(), recipe.isBigTiff ? "w8" : "w");
    if (!tiff)
        return false;
    setTags(tiff, recipe);
    const bool isWritten = recipe.tileSize > 0 ? writeTiles(tiff, recipe) : writeStrips(tiff, recipe);
    TIFFClose(tiff);
    return isWritten;
}
