#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xrv {

/// A small text file that lies beside an image.
struct SideFile
{
    std::string name; ///< UTF-8, for messages
    std::string text; ///< without a byte order mark
};

/// The first of the files stem + one of \a endings that exists; stem is \a localName (UTF-8) without its last
/// extension. Only regular files count, so that a pipe or a device cannot hold up the opening of an image. A file of
/// more than \a maxBytes or one that cannot be read is left out with a warning, and the search goes on.
std::optional<SideFile> findSideFile(const std::string &localName, const std::vector<std::string> &endings,
                                     std::size_t maxBytes, std::vector<std::string> *warnings);

/// The extension of \a localName without its dot; empty without one.
std::string fileExtension(const std::string &localName);

/// ASCII letters only, whatever the locale.
std::string asciiUpper(std::string_view text);
std::string_view trimmed(std::string_view text);

/// Reads the whole of \a text as one finite number with a decimal point, whatever the locale. A leading + is allowed.
std::optional<double> parseNumber(std::string_view text);

} // namespace xrv
