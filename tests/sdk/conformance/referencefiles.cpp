#include "referencefiles.h"

#include <tiffio.h>

#include <fstream>
#include <memory>

namespace {

std::int64_t cellAt(const std::vector<char> &bytes, std::size_t index, std::size_t cellSize, bool bigEndian)
{
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < cellSize; ++i) {
        const std::size_t place = index * cellSize + (bigEndian ? i : cellSize - 1 - i);
        value = value << 8 | static_cast<std::uint8_t>(bytes[place]);
    }
    return static_cast<std::int64_t>(value);
}

/// The number that the low \a bits of \a value stand for.
std::int64_t signExtended(std::int64_t value, int bits)
{
    const std::int64_t sign = std::int64_t{1} << (bits - 1);
    return ((value & (2 * sign - 1)) ^ sign) - sign;
}

struct TiffDeleter
{
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};

} // namespace

PgxImage readPgx(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::string magic, byteOrder, depth;
    PgxImage image;
    // The sign may stand apart from the depth: "+8", "+ 8", "8".
    file >> magic >> byteOrder >> depth;
    image.isSigned = !depth.empty() && depth[0] == '-';
    if (depth == "+" || depth == "-")
        file >> depth;
    image.bits = std::abs(std::atoi(depth.c_str()));
    file >> image.width >> image.height;
    file.get(); // the one white space before the cells
    if (!file || magic != "PG" || image.bits < 1 || image.bits > 32 || image.width < 1 || image.height < 1)
        return {};

    const std::size_t cellSize = image.bits <= 8 ? 1 : image.bits <= 16 ? 2 : 4;
    const std::size_t count = static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
    std::vector<char> bytes(count * cellSize);
    if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        return {};
    image.cells.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t cell = cellAt(bytes, i, cellSize, byteOrder == "ML");
        image.cells[i] = image.isSigned ? signExtended(cell, image.bits) : cell;
    }
    return image;
}

TiffPicture readTiffPicture(const std::string &path)
{
    const std::unique_ptr<TIFF, TiffDeleter> tiff(TIFFOpen(path.c_str(), "r"));
    std::uint32_t width = 0, height = 0;
    if (!tiff || !TIFFGetField(tiff.get(), TIFFTAG_IMAGEWIDTH, &width) ||
        !TIFFGetField(tiff.get(), TIFFTAG_IMAGELENGTH, &height))
        return {};
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width) * height);
    if (!TIFFReadRGBAImageOriented(tiff.get(), width, height, pixels.data(), ORIENTATION_TOPLEFT, 1))
        return {};
    TiffPicture picture{static_cast<int>(width), static_cast<int>(height), {}};
    picture.rgb.reserve(pixels.size() * 3);
    for (const std::uint32_t pixel : pixels) {
        picture.rgb.push_back(static_cast<std::uint8_t>(TIFFGetR(pixel)));
        picture.rgb.push_back(static_cast<std::uint8_t>(TIFFGetG(pixel)));
        picture.rgb.push_back(static_cast<std::uint8_t>(TIFFGetB(pixel)));
    }
    return picture;
}
