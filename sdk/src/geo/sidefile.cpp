#include "sidefile.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace xrv {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kBlanks = " \t\r\n\v\f";

fs::path pathOf(const std::string &utf8)
{
    return fs::u8path(utf8);
}

std::optional<std::string> readText(const fs::path &path, std::size_t maxBytes)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
        return std::nullopt;
    // The size that the file system told may be out of date; one byte more than allowed shows that.
    std::string text(maxBytes + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (stream.bad() || static_cast<std::size_t>(stream.gcount()) > maxBytes)
        return std::nullopt;
    text.resize(static_cast<std::size_t>(stream.gcount()));
    if (text.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0)
        text.erase(0, kByteOrderMark.size());
    return text;
}

} // namespace

std::optional<SideFile> findSideFile(const std::string &localName, const std::vector<std::string> &endings,
                                     std::size_t maxBytes, std::vector<std::string> *warnings)
{
    if (localName.empty())
        return std::nullopt;
    const std::string stem = localName.substr(0, localName.size() - pathOf(localName).extension().u8string().size());
    for (const std::string &ending : endings) {
        const std::string name = stem + ending;
        const fs::path path = pathOf(name);
        std::error_code error;
        if (name == localName || !fs::is_regular_file(path, error))
            continue;
        const std::uintmax_t size = fs::file_size(path, error);
        std::optional<std::string> text;
        if (!error && size <= maxBytes)
            text = readText(path, maxBytes);
        if (text)
            return SideFile{name, std::move(*text)};
        warnings->push_back("The file '" + name + "' is ignored because it cannot be read or is too large.");
    }
    return std::nullopt;
}

std::string fileExtension(const std::string &localName)
{
    const std::string extension = pathOf(localName).extension().u8string();
    return extension.empty() ? extension : extension.substr(1);
}

std::string asciiUpper(std::string_view text)
{
    std::string result(text);
    for (char &c : result) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return result;
}

std::string_view trimmed(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<double> parseNumber(std::string_view text)
{
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-')
            return std::nullopt;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace xrv
