#include "worldfile.h"

#include "placement.h"
#include "sidefile.h"

#include "base/utf8.h"

#include <algorithm>

namespace xrv {

namespace {

constexpr std::size_t kMaxBytes = std::size_t(64) * 1024;

std::vector<std::string_view> wordsOf(std::string_view text)
{
    constexpr std::string_view kBetween = " \t\r\n\v\f\x1a"; // 1A ends a file in old DOS programs
    std::vector<std::string_view> words;
    std::size_t start = 0;
    while ((start = text.find_first_not_of(kBetween, start)) != std::string_view::npos && words.size() <= 6) {
        const std::size_t end = std::min(text.find_first_of(kBetween, start), text.size());
        words.push_back(text.substr(start, end - start));
        start = end;
    }
    return words;
}

std::string problemOf(const std::vector<std::string_view> &words)
{
    if (words.size() != 6)
        return "does not hold six numbers";
    for (std::string_view word : words) {
        if (word.find(',') != std::string_view::npos)
            return "has numbers with a comma instead of a decimal point";
    }
    return "holds something that is no number";
}

} // namespace

std::optional<std::array<double, 6>> parseWorldFile(std::string_view text, const std::string &name,
                                                    std::vector<std::string> *warnings)
{
    const std::vector<std::string_view> words = wordsOf(text);
    std::vector<double> v;
    for (std::string_view word : words) {
        if (const std::optional<double> value = parseNumber(word))
            v.push_back(*value);
    }
    if (words.size() != 6 || v.size() != 6) {
        warnings->push_back("The world file '" + name + "' is ignored because it " + problemOf(words) + ".");
        return std::nullopt;
    }
    const std::array<double, 6> transform = fromCentres({v[4], v[0], v[2], v[5], v[1], v[3]});
    if (!isUsable(transform)) {
        warnings->push_back("The world file '" + name + "' is ignored because its cells have no area.");
        return std::nullopt;
    }
    return transform;
}

std::vector<std::string> worldFileEndings(const std::string &extension)
{
    std::vector<std::string> small;
    const std::string lower = asciiLower(extension);
    if (!lower.empty())
        small = {std::string{'.', lower.front(), lower.back(), 'w'}, "." + lower + "w"};
    small.insert(small.end(), {".j2w", ".wld"});
    std::vector<std::string> endings;
    for (const std::string &ending : small) {
        for (const std::string &candidate : {ending, asciiUpper(ending)}) {
            if (std::find(endings.begin(), endings.end(), candidate) == endings.end())
                endings.push_back(candidate);
        }
    }
    return endings;
}

std::optional<std::array<double, 6>> readWorldFile(const std::string &localName, std::vector<std::string> *warnings)
{
    const std::optional<SideFile> file =
        findSideFile(localName, worldFileEndings(fileExtension(localName)), kMaxBytes, warnings);
    if (!file)
        return std::nullopt;
    return parseWorldFile(file->text, file->name, warnings);
}

} // namespace xrv
