#include "sourcename.h"

#include "io/filenames.h"

#include <algorithm>

namespace xrv {

using PLK::CError;

namespace {

/// Letters and digits stand before the "://", as in every address; a local name may hold one further on.
std::size_t schemeEnd(const std::string &name)
{
    const std::size_t colon = name.find("://");
    if (colon == std::string::npos)
        return colon;
    const auto isAlphanumeric = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
    };
    return std::all_of(name.begin(), name.begin() + static_cast<std::ptrdiff_t>(colon), isAlphanumeric)
               ? colon
               : std::string::npos;
}

/// \a address, whose scheme ends at \a colon, without what stands before the last "@" up to \a end: it may hold a
/// password.
std::string withoutCredentials(const std::string &address, std::size_t colon, std::size_t end)
{
    const std::size_t at = address.rfind('@', end);
    const bool hasCredentials = at != std::string::npos && at > colon;
    return hasCredentials ? address.substr(0, colon + 3) + address.substr(at + 1) : address;
}

/// A web address, as a person copies it from a browser, as the address of a stream.
std::string asStream(const std::string &name)
{
    for (const char *scheme : {"http", "https"})
        if (hasScheme(name, scheme))
            return (std::string(scheme) == "http" ? "xrvp" : "xrvps") + name.substr(name.find("://"));
    return name;
}

/// What is no readable stream address, as it may be shown.
std::string shownUnread(const std::string &name)
{
    const std::size_t colon = schemeEnd(name);
    if (colon == std::string::npos)
        return name;
    const std::size_t path = std::min(name.find('/', colon + 3), name.size());
    return withoutQuery(withoutCredentials(name, colon, path));
}

} // namespace

SourceName::SourceName(const std::string &given)
    : printableName(asStream(given))
    , shownName(shownUnread(printableName))
{
    const std::string name = printableName;
    isOfStream = isStreamAddress(name);
    if (isOfStream) {
        readStream(name);
        return;
    }
    nameFault = schemeFault(name);
    filePath = localPath(name);
}

void SourceName::readStream(const std::string &given)
{
    const std::size_t colon = given.find("://");
    const std::size_t path = given.find_first_of("/?#", colon + 3);
    // As with names of files, what follows "|" is not for who opens it; a password may hold one too.
    nameFault = StreamAddress::parse(given.substr(0, given.find('|', std::min(path, given.size()))), &streamAddress);
    // An address that cannot be read may have its path anywhere.
    printableName = withoutCredentials(given, colon, nameFault ? std::string::npos : path);
    if (!nameFault)
        shownName = streamAddress.shown();
}

CError SourceName::schemeFault(const std::string &given) const
{
    if (hasScheme(given, "jpip") || hasScheme(given, "jpips"))
        return {PLK_ERR_PROTOCOL, "The JPIP protocol is not supported: \"" + shownName + "\"."};
    return {};
}

} // namespace xrv
