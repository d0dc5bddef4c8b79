#pragma once

#include "httpexchange.h"

#include <string>
#include <vector>

namespace xrv {

/// What tells one version of a file on a server from the next (RFC 9110 8.8) and how long it is.
struct FileVersion
{
    /// What the validators of a later answer say of its bytes.
    enum class Match {
        Same,
        Unproven, ///< nothing speaks against it, but what the first answer gave to tell by is missing or weak
        Different
    };

    std::string entityTag;    ///< with its quotes and, if weak, "W/"; empty without
    std::string lastModified; ///< as the server writes it; empty without
    bool hasStrongDate =
        false; ///< the file was not modified in the second in which it was asked for (RFC 9110 8.8.2.2)
    std::uint64_t length = 0;

    /// The server gave something by which bytes of two answers are known to be of the same file (RFC 9110 15.3.7.3): a
    /// strong tag, or else a strong date.
    bool isTellable() const { return hasStrongTag() || hasStrongDate; }
    /// For identities and cache keys.
    std::string text() const;
    /// Of a version that is not tellable nothing is ever proven: then what does not speak against it is the same.
    /// Lengths are not compared.
    Match match(const HttpAnswer &answer) const;
    /// A request header by which the server refuses (status 412) to send anything of another version; empty where there
    /// is nothing to name it by.
    std::string conditionHeader() const;
    /// Request headers by which the server answers 304, with no bytes, while it has this version.
    std::vector<std::string> revalidationHeaders() const;

    /// Tag and date of \a answer.
    static FileVersion of(const HttpAnswer &answer, std::uint64_t length);

private:
    bool hasStrongTag() const;
};

} // namespace xrv
