#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace xrv {

/// The six numbers of a world file as a transform of cell corners (see GeoReference::transform). Lines: x and y of a
/// step along a row, x and y of a step down a column, x and y of the centre of cell (0, 0). Any line ends; a decimal
/// point whatever the locale. Text with other than six numbers (blank lines do not count) is nothing and a warning that
/// names \a name; so are numbers with a decimal comma, which would be a guess.
std::optional<std::array<double, 6>> parseWorldFile(std::string_view text, const std::string &name,
                                                    std::vector<std::string> *warnings);

/// Endings (with their dot) that a world file of an image with \a extension may have, in the order of search: first and
/// last letter + w, whole extension + w, j2w, wld; each in small letters and in capitals.
std::vector<std::string> worldFileEndings(const std::string &extension);

/// The transform of the world file beside \a localName (UTF-8).
std::optional<std::array<double, 6>> readWorldFile(const std::string &localName, std::vector<std::string> *warnings);

} // namespace xrv
