#include "inputbudget.h"

#include <filesystem>

PLK::CError admitAtOnce(const std::string &path, std::uint64_t bytes)
{
    constexpr std::uint64_t kAnyFile = std::uint64_t(256) << 20, kPerByte = 16;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(std::filesystem::u8path(path), error);
    const std::uint64_t fileBytes = error ? 0 : size;
    if (bytes <= kAnyFile || bytes / kPerByte <= fileBytes)
        return {};
    return {PLK_ERR_UNSUPPORTED, "\"" + path + "\" is not read: it has " + std::to_string(fileBytes) +
                                     " bytes and claims cells of " + std::to_string(bytes >> 20) +
                                     " MB that can only be read at once."};
}
