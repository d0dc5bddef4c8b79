#include "filenames.h"

#include "localfile.h"

#include "base/utf8.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>

namespace xrv {

namespace {

/// Empty when a character is no byte.
std::string bytesOf(const std::wstring &wide)
{
    std::string bytes;
    for (wchar_t unit : wide) {
        if (static_cast<std::uint32_t>(unit) > 0xFF)
            return {};
        bytes.push_back(static_cast<char>(unit));
    }
    return bytes;
}

bool isWidenedUtf8(const std::string &bytes)
{
    const auto beyondAscii = [](char c) { return static_cast<unsigned char>(c) >= 0x80; };
    return std::any_of(bytes.begin(), bytes.end(), beyondAscii) && isValidUtf8(bytes);
}

bool localFileExists(const std::string &name)
{
    return LocalFile::exists(localPath(name));
}

} // namespace

std::string resolveName(const wchar_t *name)
{
    const std::wstring wide = name ? name : L"";
    std::string plain = utf8FromWide(wide);
    std::string bytes = bytesOf(wide);
    if (!isWidenedUtf8(bytes))
        return plain;
    if (isStreamAddress(bytes) || (!localFileExists(plain) && localFileExists(bytes)))
        return bytes;
    return plain;
}

std::string localPath(const std::string &name)
{
    const std::size_t bar = name.find('|');
    if (bar == std::string::npos || bar == 0 || LocalFile::exists(name))
        return name;
    return name.substr(0, bar);
}

bool hasScheme(const std::string &name, const char *scheme)
{
    const std::string start = std::string(scheme) + "://";
    return asciiLower(name.substr(0, start.size())) == start;
}

bool isStreamAddress(const std::string &name)
{
    return hasScheme(name, "xrvp") || hasScheme(name, "xrvps");
}

} // namespace xrv
