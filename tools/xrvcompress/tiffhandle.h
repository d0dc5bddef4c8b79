#pragma once

#include <tiffio.h>

#include <memory>
#include <string>
#include <vector>

struct TiffCloser
{
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TiffPtr = std::unique_ptr<TIFF, TiffCloser>;

/// Opens \a path (UTF-8) for reading. What libtiff finds wrong, then and later, goes to \a message, which is borrowed
/// and keeps the first of it. Null on failure.
TiffPtr openTiff(const std::string &path, std::string *message);

/// The values of a tag that libtiff has no name for; empty without it and where it is of another \a type.
template <typename Number> std::vector<Number> tiffNumbers(TIFF *tiff, std::uint32_t tag, TIFFDataType type)
{
    const TIFFField *field = TIFFFindField(tiff, tag, TIFF_ANY);
    if (!field || TIFFFieldDataType(field) != type || !TIFFFieldPassCount(field))
        return {};
    const Number *data = nullptr;
    std::uint32_t count = 0;
    if (TIFFFieldReadCount(field) == TIFF_VARIABLE) {
        std::uint16_t shortCount = 0;
        if (!TIFFGetField(tiff, tag, &shortCount, &data))
            return {};
        count = shortCount;
    } else if (!TIFFGetField(tiff, tag, &count, &data)) {
        return {};
    }
    return data ? std::vector<Number>(data, data + count) : std::vector<Number>();
}
