#include "fileversion.h"

namespace xrv {

namespace {

constexpr std::size_t kMaxValidator = 512;

bool isWeak(const std::string &tag)
{
    return tag.compare(0, 2, "W/") == 0;
}

/// The tag without its weakness: a server calls a tag weak while the file is younger than a second, and strong later.
std::string opaque(const std::string &tag)
{
    return isWeak(tag) ? tag.substr(2) : tag;
}

bool differ(const std::string &one, const std::string &other)
{
    return !one.empty() && !other.empty() && one != other;
}

/// A date as servers have to write it, "Sun, 06 Nov 1994 08:49:37 GMT" (RFC 9110 5.6.7), in an order by which texts are
/// compared as times; empty for anything else.
std::string comparableDate(const std::string &date)
{
    static const std::string kMonths = "JanFebMarAprMayJunJulAugSepOctNovDec";
    if (date.size() != 29 || date.compare(25, 4, " GMT") != 0)
        return {};
    const std::size_t place = kMonths.find(date.substr(8, 3));
    if (place == std::string::npos)
        return {};
    return date.substr(12, 4) + static_cast<char>('a' + place / 3) + date.substr(5, 2) + date.substr(17, 8);
}

/// A file that changes twice in a second has the same date both times.
bool isStrongDate(const std::string &lastModified, const std::string &asked)
{
    const std::string modified = comparableDate(lastModified);
    return !modified.empty() && comparableDate(asked) > modified;
}

} // namespace

bool FileVersion::hasStrongTag() const
{
    return !entityTag.empty() && !isWeak(entityTag);
}

std::string FileVersion::text() const
{
    const bool goesByDate = !hasStrongTag() && hasStrongDate;
    return (goesByDate ? std::string() : opaque(entityTag)) + '|' +
           (goesByDate || entityTag.empty() ? lastModified : std::string()) + '|' + std::to_string(length);
}

FileVersion::Match FileVersion::match(const HttpAnswer &answer) const
{
    const FileVersion other = of(answer, 0);
    if (differ(opaque(entityTag), opaque(other.entityTag)))
        return Match::Different;
    // With equal tags the date does not matter: servers that share the load may have got the file at different times.
    const bool hasBothTags = !entityTag.empty() && !other.entityTag.empty();
    if (!hasBothTags && differ(lastModified, other.lastModified))
        return Match::Different;
    const bool isProven = hasStrongTag() ? other.hasStrongTag() : lastModified == other.lastModified;
    return isProven || !isTellable() ? Match::Same : Match::Unproven;
}

std::string FileVersion::conditionHeader() const
{
    // Weak tags never match here (RFC 9110 13.1.1).
    if (hasStrongTag())
        return "If-Match: " + entityTag;
    return lastModified.empty() ? std::string() : "If-Unmodified-Since: " + lastModified;
}

std::vector<std::string> FileVersion::revalidationHeaders() const
{
    // Tags are compared weakly here, and dates not at all where there is a tag (RFC 9110 13.1.2, 13.1.3): a weak one
    // would have a server confirm what is not the same byte for byte.
    if (hasStrongTag())
        return {"If-None-Match: " + entityTag};
    if (hasStrongDate)
        return {"If-Modified-Since: " + lastModified};
    return {};
}

FileVersion FileVersion::of(const HttpAnswer &answer, std::uint64_t length)
{
    FileVersion version;
    version.length = length;
    version.entityTag = answer.header("etag");
    version.lastModified = answer.header("last-modified");
    if (version.entityTag.size() > kMaxValidator)
        version.entityTag.clear();
    if (version.lastModified.size() > kMaxValidator)
        version.lastModified.clear();
    version.hasStrongDate = isStrongDate(version.lastModified, answer.header("date"));
    return version;
}

} // namespace xrv
