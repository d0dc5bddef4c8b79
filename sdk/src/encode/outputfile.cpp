#include "outputfile.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <system_error>

namespace xrv {

using PLK::CError;

namespace {

namespace fs = std::filesystem;

/// What is added must not make a name too long, which is 255 bytes or words with most file systems.
constexpr std::size_t kMaxNameKept = 200;

std::FILE *openNew(const fs::path &path)
{
#ifdef _WIN32
    return _wfopen(path.c_str(), L"w+bx");
#else
    return std::fopen(path.c_str(), "w+bx");
#endif
}

bool seekTo(std::FILE *file, std::uint64_t offset)
{
#ifdef _WIN32
    return _fseeki64(file, static_cast<long long>(offset), SEEK_SET) == 0;
#else
    return fseeko(file, static_cast<off_t>(offset), SEEK_SET) == 0;
#endif
}

/// A name in the same folder that nobody else is likely to choose.
fs::path temporaryName(const fs::path &path, int attempt)
{
    const auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    fs::path name = path.parent_path() / fs::u8path(".");
    if (path.filename().native().size() <= kMaxNameKept)
        name += path.filename();
    name += fs::u8path("." + std::to_string(ticks) + std::to_string(attempt) + ".part");
    return name;
}

} // namespace

OutputFile::~OutputFile()
{
    if (file)
        std::fclose(file);
    std::error_code ignored;
    if (!temporaryPath.empty())
        fs::remove(fs::u8path(temporaryPath), ignored);
}

CError OutputFile::failure(const char *what) const
{
    const int code = errno;
    return {PLK_ERR_NO_ACCESS, "\"" + finalPath + "\" " + what +
                                   (code != 0 ? ": " + std::generic_category().message(code) : std::string()) + "."};
}

CError OutputFile::open(const std::string &path)
{
    finalPath = path;
    const fs::path target = fs::u8path(path);
    std::error_code ignored;
    const fs::file_status status = fs::status(target, ignored);
    if (target.filename().empty() || fs::is_directory(status))
        return {PLK_ERR_INVALID_ARGUMENT, "\"" + path + "\" is no name of a file."};
    // The file takes the place of what has its name: a device or a pipe would be gone.
    if (fs::exists(status) && !fs::is_regular_file(status))
        return {PLK_ERR_INVALID_ARGUMENT, "\"" + path + "\" is not an ordinary file and is not replaced."};
    for (int attempt = 0; attempt < 16 && !file; ++attempt) {
        const fs::path name = temporaryName(target, attempt);
        errno = 0;
        file = openNew(name);
        if (file)
            temporaryPath = name.u8string();
        else if (errno != EEXIST)
            break;
    }
    return file ? CError() : failure("cannot be written");
}

CError OutputFile::write(const std::uint8_t *bytes, std::size_t count)
{
    errno = 0;
    if (!isAtEnd && !seekTo(file, length))
        return failure("cannot be written");
    isAtEnd = true;
    if (std::fwrite(bytes, 1, count, file) != count)
        return failure("cannot be written");
    length += count;
    return {};
}

CError OutputFile::readBack(ByteRange range, Bytes *bytes)
{
    errno = 0;
    isAtEnd = false;
    bytes->resize(static_cast<std::size_t>(range.length));
    if (!seekTo(file, range.offset) || std::fread(bytes->data(), 1, bytes->size(), file) != bytes->size())
        return failure("cannot be read back");
    return {};
}

CError OutputFile::commit()
{
    errno = 0;
    std::FILE *const closing = file;
    file = nullptr;
    if (std::fclose(closing) != 0)
        return failure("cannot be written");
    std::error_code error;
    fs::rename(fs::u8path(temporaryPath), fs::u8path(finalPath), error);
    if (error)
        return {PLK_ERR_NO_ACCESS, "\"" + finalPath + "\" cannot be written: " + error.message() + "."};
    temporaryPath.clear();
    return {};
}

} // namespace xrv
