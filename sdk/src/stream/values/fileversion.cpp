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

} // namespace

std::string FileVersion::text() const
{
    return opaque(entityTag) + '|' + (entityTag.empty() ? lastModified : std::string()) + '|' + std::to_string(length);
}

bool FileVersion::agreesWith(const HttpAnswer &answer) const
{
    const FileVersion other = of(answer, 0);
    if (!entityTag.empty() && !other.entityTag.empty())
        return opaque(entityTag) == opaque(other.entityTag);
    if (!lastModified.empty() && !other.lastModified.empty())
        return lastModified == other.lastModified;
    return true;
}

std::string FileVersion::conditionHeader() const
{
    // Weak tags never match here (RFC 9110 13.1.1).
    if (!entityTag.empty() && !isWeak(entityTag))
        return "If-Match: " + entityTag;
    return lastModified.empty() ? std::string() : "If-Unmodified-Since: " + lastModified;
}

std::vector<std::string> FileVersion::revalidationHeaders() const
{
    if (!entityTag.empty())
        return {"If-None-Match: " + entityTag};
    if (!lastModified.empty())
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
    return version;
}

} // namespace xrv
