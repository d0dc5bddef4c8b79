#include "inputbudget.h"
#include "rowsource.h"
#include "sourceparts.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

using PLK::CError;
using namespace xrv;

namespace {

/// A PNG file: palettes become colours, grey of less than 8 bits becomes 8. Rows come as they are read; those of an
/// interlaced file are only known at its end, so all of it is kept then.
class PngSource : public RowSource
{
public:
    ~PngSource() override { png_destroy_read_struct(&png, &info, nullptr); }

    CError open(const std::string &path, std::vector<std::string> *warnings)
    {
        name = path;
        file.open(std::filesystem::u8path(path), std::ios::binary);
        if (CError error = begin())
            return error;
        describe();
        completePlace(path, &image, warnings);
        if (passes > 1) {
            if (CError error = admitAtOnce(path, std::uint64_t(image.height) * bytesOfRow))
                return error;
            picture.resize(std::size_t(image.height) * bytesOfRow);
            for (int pass = 0; pass < passes; ++pass)
                for (std::uint32_t y = 0; y < image.height; ++y)
                    if (!nextRow(picture.data() + y * bytesOfRow))
                        return damaged();
        }
        return {};
    }

protected:
    CError readRow(std::uint8_t *row) override
    {
        if (passes > 1)
            std::memcpy(row, picture.data() + rowsGiven++ * bytesOfRow, bytesOfRow);
        else if (!nextRow(row))
            return damaged();
        return {};
    }

    CError restart() override
    {
        rowsGiven = 0;
        if (passes > 1)
            return {}; // they are kept
        file.clear();
        file.seekg(0);
        png_destroy_read_struct(&png, &info, nullptr);
        return begin();
    }

private:
    CError begin()
    {
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, keepError, dropWarning);
        info = png ? png_create_info_struct(png) : nullptr;
        if (!info)
            return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory."};
        return readHeader() ? CError() : damaged();
    }

    static void keepError(png_structp png, png_const_charp text)
    {
        static_cast<PngSource *>(png_get_error_ptr(png))->message = text;
        png_longjmp(png, 1);
    }
    static void dropWarning(png_structp, png_const_charp) {}
    static void readBytes(png_structp png, png_bytep bytes, png_size_t count)
    {
        auto *self = static_cast<PngSource *>(png_get_io_ptr(png));
        self->file.read(reinterpret_cast<char *>(bytes), static_cast<std::streamsize>(count));
        if (!self->file)
            png_error(png, "the file ends too early");
    }
    CError damaged() const { return {PLK_ERR_MALFORMED, "\"" + name + "\" is damaged: " + message + "."}; }

    // No object with a destructor lives in the functions that libpng may jump out of.
    bool readHeader()
    {
        if (setjmp(png_jmpbuf(png)))
            return false;
        png_set_read_fn(png, this, readBytes);
        png_read_info(png, info);
        png_set_expand(png);
        const std::uint16_t one = 1;
        if (*reinterpret_cast<const std::uint8_t *>(&one) == 1)
            png_set_swap(png); // words of this machine
        passes = png_set_interlace_handling(png);
        png_read_update_info(png, info);
        bytesOfRow = png_get_rowbytes(png, info);
        return true;
    }
    bool nextRow(std::uint8_t *row)
    {
        if (setjmp(png_jmpbuf(png)))
            return false;
        png_read_row(png, row, nullptr);
        return true;
    }
    void describe()
    {
        image.width = png_get_image_width(png, info);
        image.height = png_get_image_height(png, info);
        const int type = png_get_color_type(png, info);
        image.colourSpace = type & PNG_COLOR_MASK_COLOR ? PLK_COLORSPACE_SRGB : PLK_COLORSPACE_GREYSCALE;
        image.isLastOpacity = type & PNG_COLOR_MASK_ALPHA;
        image.bands.assign(png_get_channels(png, info), {png_get_bit_depth(png, info), false, {}});
        nameBands(&image);
    }

    std::string name, message = "it is no PNG file";
    std::ifstream file;
    png_structp png = nullptr;
    png_infop info = nullptr;
    int passes = 1;
    std::size_t bytesOfRow = 0, rowsGiven = 0; ///< the former as libpng has it
    Bytes picture;                             ///< of an interlaced file
};

} // namespace

CError openPngSource(const std::string &path, std::unique_ptr<ImageSource> *source, std::vector<std::string> *warnings)
{
    auto made = std::make_unique<PngSource>();
    CError error = made->open(path, warnings);
    if (error.IsSuccess())
        *source = std::move(made);
    return error;
}
