#pragma once

#include <xrv60/plkerror.h>

#include <string>

namespace xrv {

/// An "xrvp://" (HTTP) or "xrvps://" (HTTPS) address, taken apart and put into the form that goes over the wire.
class StreamAddress
{
public:
    /// \a text is "scheme://[user[:password]@]host[:port]/path[?query]" in UTF-8, as a person writes it: blanks and
    /// characters beyond ASCII are percent-encoded (RFC 3986 2.1), what is encoded already stays. A "#" belongs to the
    /// name. PLK_ERR_PROTOCOL with a sentence, which never holds the password, when it is no such address.
    static PLK::CError parse(const std::string &text, StreamAddress *address);

    bool isSecure() const { return secure; }
    /// "http://host:port/path?query" or with "https", without user and password.
    std::string url() const { return server() + target; }
    /// "https://host:port": what connections, limits and passwords belong to.
    std::string server() const;
    /// The address without user, password and default port, one for all ways to write it: what is kept of it bears it.
    std::string printable() const;
    /// The same as it may be shown and logged: what follows "?" may be a token and is left out.
    std::string shown() const;

    /// That of the file beside it whose name has \a ending behind it.
    StreamAddress withEnding(const std::string &ending) const;

    bool hasCredentials() const { return !user.empty() || !password.empty(); }
    const std::string &userName() const { return user; }
    const std::string &userPassword() const { return password; }
    void setCredentials(std::string newUser, std::string newPassword);

private:
    PLK::CError setAuthority(const std::string &authority);
    PLK::CError setHost(const std::string &text);
    PLK::CError setPort(const std::string &text);
    unsigned defaultPort() const { return secure ? 443 : 80; }

    bool secure = false;
    std::string user, password; ///< decoded
    std::string host;           ///< lower case; IPv6 with its brackets
    unsigned port = 0;
    std::string target; ///< "/path?query", encoded
};

/// \a address with dots in the place of what follows "?", which may be a token.
std::string withoutQuery(const std::string &address);

} // namespace xrv
