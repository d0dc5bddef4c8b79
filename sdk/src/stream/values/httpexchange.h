#pragma once

#include "base/bytes.h"
#include "io/openwatch.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace xrv {

struct HttpAnswer;

/// Takes a body that is too long for memory as it comes.
class BodySink
{
public:
    virtual ~BodySink() = default;
    /// \a length bytes from \a offset of the body; \a head has status and headers. False ends the exchange. On the
    /// client's thread, which all streams wait for; perhaps once more after the exchange was cancelled.
    virtual bool take(const HttpAnswer &head, std::uint64_t offset, const std::uint8_t *data, std::size_t length) = 0;
};

/// What becomes of an exchange whose asker has turned to something else: it goes on, as long as that is of use, and
/// what it brings is handed over here.
class Afterlife
{
public:
    virtual ~Afterlife() = default;
    /// From now on nobody waits. On the asker's thread, with the client's lock held: must not call back.
    virtual void begin() = 0;
    /// It is of use still. On the client's thread.
    virtual bool goesOn() const = 0;
    /// The exchange is over: whole, broken, or broken off because it was of no use any more. On the client's thread,
    /// which all streams wait for.
    virtual void end(const HttpAnswer &answer) = 0;
};

/// One request to a server. Times in milliseconds.
struct HttpRequest
{
    std::string url;    ///< without user and password
    std::string server; ///< "https://host:port"
    std::string user, password;
    bool sendsCredentials = false;
    std::string range;                ///< "0-99,200-299"; empty asks for the whole
    std::vector<std::string> headers; ///< further ones, "Name: value"
    std::string userAgent, caFile;
    int connectTimeout = 0, stallTimeout = 0;
    /// The answer may be much longer than what is wanted of it. On a connection of its own, over HTTP/1.1 and with a
    /// small buffer, it delays no others until it is broken off.
    bool mayFlood = false;
    std::uint64_t partialLimit = 0;       ///< bytes taken of the body of a 206, more is "too long"
    std::uint64_t wholeLimit = 0;         ///< the same of a 200
    std::shared_ptr<BodySink> wholeSink;  ///< gets the body of a 200, where there is one
    std::shared_ptr<OpenWatch> watch;     ///< told how much of it came, where there is one
    std::shared_ptr<Afterlife> afterlife; ///< without one a cancelled exchange is broken off
};

/// How an exchange ended.
enum class HttpOutcome {
    Complete,    ///< the answer is whole
    Cut,         ///< the connection broke with the answer's head or part of its body there
    Unreachable, ///< no connection, or nothing of an answer
    TimedOut,    ///< stalled; part of the answer may be there
    TooLong,     ///< more than was to be taken: the body is as long as the limit
    Distrusted,  ///< the server's certificate is not trusted
    Cancelled,
    Invalid, ///< no HTTP, or headers beyond all bounds
};

/// What came back.
struct HttpAnswer
{
    HttpOutcome outcome = HttpOutcome::Unreachable;
    std::string failure;                                      ///< in English, no credentials, when not complete
    int status = 0;                                           ///< 0 without an answer
    std::vector<std::pair<std::string, std::string>> headers; ///< names in lower case
    Bytes body;
    std::uint64_t bodyLength = 0; ///< also of what went to a sink
    bool isMultiplexed = false;   ///< it came by HTTP/2, where a connection carries many at a time
    /// Of the last header of this \a name (lower case); empty without.
    std::string header(const std::string &name) const;
    /// What the Content-Length header says; 0 without.
    std::uint64_t contentLength() const;
};

} // namespace xrv
