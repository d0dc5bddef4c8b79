#pragma once

#include "stream/values/httpexchange.h"

#include <string>
#include <vector>

namespace xrv {

/// A Content-Range header (RFC 9110 14.4).
struct ContentRange
{
    bool hasRange = false; ///< not "*", as in a 416
    ByteRange range;
    bool hasTotal = false;
    std::uint64_t total = 0;

    /// False for anything else than "bytes first-last/total", either side "*".
    static bool parse(const std::string &text, ContentRange *result);
};

/// A stretch of a file within an answer's body. The bytes belong to the answer.
struct RangePiece
{
    ContentRange contentRange;
    const std::uint8_t *data = nullptr;
    std::uint64_t length = 0; ///< less than the header says where the body ended early
};

/// The stretches in the body of a 206, which may have been cut short: one, or those of a multipart/byteranges body (RFC
/// 9110 14.6). False with a sentence in \a fault when the answer contradicts itself.
bool readPieces(const HttpAnswer &answer, std::vector<RangePiece> *pieces, std::string *fault);

/// The answer's body is compressed, which no piece of a file may be.
bool isCompressed(const HttpAnswer &answer);

/// Milliseconds that a Retry-After header (RFC 9110 10.2.3) asks for; -1 without one.
int retryAfter(const HttpAnswer &answer);

} // namespace xrv
