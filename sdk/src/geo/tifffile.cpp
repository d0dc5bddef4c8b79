#include "tifffile.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

namespace xrv {

/// What libtiff calls back. The client data is the TiffFile.
struct TiffFile::Callbacks
{
    static TiffFile *self(thandle_t client) { return static_cast<TiffFile *>(client); }

    static tmsize_t read(thandle_t client, void *out, tmsize_t count)
    {
        TiffFile *file = self(client);
        if (count <= 0 || file->position >= file->content.size())
            return 0;
        const std::size_t taken = std::min(static_cast<std::size_t>(count), file->content.size() - file->position);
        std::memcpy(out, file->content.data() + file->position, taken);
        file->position += taken;
        return static_cast<tmsize_t>(taken);
    }

    static tmsize_t write(thandle_t, void *, tmsize_t) { return 0; }

    static toff_t seek(thandle_t client, toff_t offset, int whence)
    {
        TiffFile *file = self(client);
        const toff_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? file->position : file->content.size();
        file->position = static_cast<std::size_t>(base + offset);
        return file->position;
    }

    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t client) { return self(client)->content.size(); }

    static int keepError(TIFF *, void *client, const char *, const char *format, va_list arguments)
    {
        auto *file = static_cast<TiffFile *>(client);
        char text[256];
        if (file->error.empty() && std::vsnprintf(text, sizeof text, format, arguments) > 0)
            file->error = text;
        return 1;
    }

    // 1 tells libtiff that the message is dealt with and the global handler need not see it.
    static int dropWarning(TIFF *, void *, const char *, const char *, va_list) { return 1; }
};

TiffFile::TiffFile(const Bytes &bytes)
    : content(bytes)
{
    open();
}

TiffFile::~TiffFile()
{
    if (handle)
        TIFFClose(handle);
}

void TiffFile::open()
{
    struct OptionsDeleter
    {
        void operator()(TIFFOpenOptions *options) const { TIFFOpenOptionsFree(options); }
    };
    const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), Callbacks::keepError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), Callbacks::dropWarning, nullptr);
    // No tag can hold more than the file.
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(content.size() + 65536));
    // m: no memory map, O: no strip tables.
    handle = TIFFClientOpenExt("GeoJP2", "rmO", this, Callbacks::read, Callbacks::write, Callbacks::seek,
                               Callbacks::close, Callbacks::size, nullptr, nullptr, options.get());
}

TiffFile::Values TiffFile::values(std::uint32_t tag, int type) const
{
    const TIFFField *field = handle ? TIFFFindField(handle, tag, TIFF_ANY) : nullptr;
    if (!field || TIFFFieldDataType(field) != type)
        return {};
    const void *data = nullptr;
    if (!TIFFFieldPassCount(field)) {
        if (type != TIFF_ASCII || !TIFFGetField(handle, tag, &data) || !data)
            return {};
        return {data, std::strlen(static_cast<const char *>(data))};
    }
    if (TIFFFieldReadCount(field) == TIFF_VARIABLE2) {
        std::uint32_t count = 0;
        return TIFFGetField(handle, tag, &count, &data) && data ? Values{data, count} : Values{};
    }
    std::uint16_t count = 0;
    const bool isVariable = TIFFFieldReadCount(field) == TIFF_VARIABLE;
    return isVariable && TIFFGetField(handle, tag, &count, &data) && data ? Values{data, count} : Values{};
}

std::vector<double> TiffFile::doubles(std::uint32_t tag) const
{
    const Values found = values(tag, TIFF_DOUBLE);
    const auto *first = static_cast<const double *>(found.data);
    return {first, first + found.count};
}

std::vector<std::uint16_t> TiffFile::shorts(std::uint32_t tag) const
{
    const Values found = values(tag, TIFF_SHORT);
    const auto *first = static_cast<const std::uint16_t *>(found.data);
    return {first, first + found.count};
}

std::string TiffFile::text(std::uint32_t tag) const
{
    const Values found = values(tag, TIFF_ASCII);
    const char *first = static_cast<const char *>(found.data);
    const char *end = std::find(first, first + found.count, '\0');
    return {first, end};
}

} // namespace xrv
