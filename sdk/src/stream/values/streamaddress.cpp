#include "streamaddress.h"

#include "base/utf8.h"
#include "io/filenames.h"

#include <algorithm>
#include <cctype>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::size_t kMaxAddress = 8000; // servers refuse longer request lines
constexpr const char *kPathMarks = "-._~!$&'()*+,;=:@/";
constexpr const char *kHexDigits = "0123456789ABCDEF";

CError refused(const std::string &sentence)
{
    return {PLK_ERR_PROTOCOL, sentence};
}

bool isAlphanumeric(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

int hexValue(char c)
{
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                  : -1;
}

/// A percent sign and two hexadecimal digits stand at \a at.
bool isEncoded(const std::string &text, std::size_t at)
{
    return text[at] == '%' && at + 2 < text.size() && hexValue(text[at + 1]) >= 0 && hexValue(text[at + 2]) >= 0;
}

/// Percent-encodes what is neither a letter, a digit nor one of \a marks.
std::string encoded(const std::string &text, const std::string &marks)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (isAlphanumeric(c) || marks.find(c) != std::string::npos || isEncoded(text, i)) {
            result += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        result += '%';
        result += kHexDigits[byte >> 4];
        result += kHexDigits[byte & 15];
    }
    return result;
}

std::string decoded(const std::string &text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isEncoded(text, i)) {
            result += text[i];
            continue;
        }
        result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
        i += 2;
    }
    return result;
}

bool hasControlCharacter(const std::string &text)
{
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

} // namespace

CError StreamAddress::parse(const std::string &text, StreamAddress *address)
{
    StreamAddress parsed;
    if (!isStreamAddress(text))
        return refused(R"(A stream address begins with "xrvp://" or "xrvps://".)");
    if (text.size() > kMaxAddress)
        return refused("The stream address is longer than " + std::to_string(kMaxAddress) + " characters.");
    if (hasControlCharacter(text) || !isValidUtf8(text))
        return refused("The stream address holds characters that no address can have.");
    parsed.secure = hasScheme(text, "xrvps");
    const std::size_t start = text.find("://") + 3;
    const std::size_t end = std::min(text.find_first_of("/?#", start), text.size());
    if (CError error = parsed.setAuthority(text.substr(start, end - start)))
        return error;
    const std::size_t question = std::min(text.find('?', end), text.size());
    parsed.target = encoded(text.substr(end, question - end), kPathMarks);
    if (parsed.target.empty() || parsed.target.front() != '/')
        parsed.target.insert(0, "/");
    if (question < text.size())
        parsed.target += '?' + encoded(text.substr(question + 1), std::string(kPathMarks) + '?');
    *address = parsed;
    return {};
}

CError StreamAddress::setAuthority(const std::string &authority)
{
    std::string server = authority;
    const std::size_t at = authority.rfind('@'); // a password may hold one too
    if (at != std::string::npos) {
        const std::string credentials = authority.substr(0, at);
        const std::size_t colon = std::min(credentials.find(':'), credentials.size());
        user = decoded(credentials.substr(0, colon));
        password = colon < credentials.size() ? decoded(credentials.substr(colon + 1)) : std::string();
        server = authority.substr(at + 1);
        if (hasControlCharacter(user) || hasControlCharacter(password))
            return refused("User name or password of the stream address hold characters that none can have.");
    }
    const std::size_t bracket = server.rfind(']');
    const std::size_t colon = server.find(':', bracket == std::string::npos ? 0 : bracket);
    if (CError error = setHost(server.substr(0, colon)))
        return error;
    return setPort(colon == std::string::npos ? std::string() : server.substr(colon + 1));
}

CError StreamAddress::setHost(const std::string &text)
{
    if (text.empty())
        return refused("The stream address names no server.");
    host = asciiLower(text);
    const bool isBracketed = host.front() == '[' && host.back() == ']' && host.size() > 4;
    const bool isPlain = std::all_of(host.begin(), host.end(), [](char c) {
        return isAlphanumeric(c) || c == '-' || c == '.' || c == '_' || static_cast<unsigned char>(c) >= 0x80;
    });
    const bool isIpv6 = isBracketed && host.find_first_not_of("0123456789abcdef:.", 1) == host.size() - 1;
    if (!isPlain && !isIpv6)
        return refused("\"" + text + "\" is no name of a server.");
    return {};
}

CError StreamAddress::setPort(const std::string &text)
{
    port = defaultPort();
    if (text.empty())
        return {};
    const bool isNumber = text.size() <= 5 && text.find_first_not_of("0123456789") == std::string::npos;
    port = isNumber ? static_cast<unsigned>(std::stoul(text)) : 0;
    if (port < 1 || port > 65535)
        return refused("\"" + text + "\" is no port number; these go from 1 to 65535.");
    return {};
}

std::string StreamAddress::server() const
{
    return (secure ? "https://" : "http://") + host + ':' + std::to_string(port);
}

std::string StreamAddress::printable() const
{
    return (secure ? "xrvps://" : "xrvp://") + host + (port == defaultPort() ? "" : ':' + std::to_string(port)) +
           target;
}

std::string StreamAddress::shown() const
{
    return withoutQuery(printable());
}

StreamAddress StreamAddress::withEnding(const std::string &ending) const
{
    StreamAddress beside = *this;
    beside.target.insert(std::min(target.find('?'), target.size()), ending);
    return beside;
}

void StreamAddress::setCredentials(std::string newUser, std::string newPassword)
{
    user = std::move(newUser);
    password = std::move(newPassword);
}

std::string withoutQuery(const std::string &address)
{
    const std::size_t question = address.find('?');
    return question == std::string::npos ? address : address.substr(0, question) + "?...";
}

} // namespace xrv
