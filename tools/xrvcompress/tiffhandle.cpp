#include "tiffhandle.h"

#include <cstdarg>
#include <cstdio>
#include <filesystem>

namespace {

constexpr tmsize_t kMaxMemory = tmsize_t(2) << 30; ///< that one field or strip may take

int keepError(TIFF *, void *client, const char *, const char *format, va_list arguments)
{
    auto *message = static_cast<std::string *>(client);
    char text[256];
    if (message->empty() && std::vsnprintf(text, sizeof text, format, arguments) > 0)
        *message = text;
    return 1;
}

int dropWarning(TIFF *, void *, const char *, const char *, va_list)
{
    return 1;
}

struct OptionsDeleter
{
    void operator()(TIFFOpenOptions *options) const { TIFFOpenOptionsFree(options); }
};

} // namespace

TiffPtr openTiff(const std::string &path, std::string *message)
{
    const std::unique_ptr<TIFFOpenOptions, OptionsDeleter> options(TIFFOpenOptionsAlloc());
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keepError, message);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), dropWarning, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kMaxMemory);
    // m: no memory map, which a file that shrinks would make crash.
#ifdef _WIN32
    return TiffPtr(TIFFOpenWExt(std::filesystem::u8path(path).c_str(), "rm", options.get()));
#else
    return TiffPtr(TIFFOpenExt(path.c_str(), "rm", options.get()));
#endif
}
