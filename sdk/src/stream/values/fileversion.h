#pragma once

#include "httpexchange.h"

#include <string>
#include <vector>

namespace xrv {

/// What tells one version of a file on a server from the next (RFC 9110 8.8) and how long it is.
struct FileVersion
{
    std::string entityTag;    ///< with its quotes and, if weak, "W/"; empty without
    std::string lastModified; ///< as the server writes it; empty without
    std::uint64_t length = 0;

    /// The server gave something to tell versions by.
    bool isTellable() const { return !entityTag.empty() || !lastModified.empty(); }
    /// For identities and cache keys.
    std::string text() const;
    /// The tags and dates of \a answer do not speak against it being of this version. Lengths are not compared.
    bool agreesWith(const HttpAnswer &answer) const;
    /// A request header by which the server refuses (status 412) to send anything of another version; empty where there
    /// is nothing to name it by.
    std::string conditionHeader() const;
    /// Request headers by which the server answers 304, with no bytes, while it has this version.
    std::vector<std::string> revalidationHeaders() const;

    /// Tag and date of \a answer.
    static FileVersion of(const HttpAnswer &answer, std::uint64_t length);
};

} // namespace xrv
