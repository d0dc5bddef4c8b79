#include "tiffpicture.h"

#include <tiffio.h>

#include <memory>

namespace {

struct TiffDeleter
{
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};

} // namespace

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
