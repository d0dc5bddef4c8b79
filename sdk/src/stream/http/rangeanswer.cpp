#include "rangeanswer.h"

#include "base/utf8.h"

#include <curl/curl.h>

#include <algorithm>
#include <ctime>

namespace xrv {

namespace {

constexpr std::size_t kMaxPartHeader = 8192;
constexpr std::size_t kMaxDigits = 18;
constexpr long long kMaxPause = 24LL * 3600 * 1000;

bool parseNumber(const std::string &text, std::uint64_t *number)
{
    if (text.empty() || text.size() > kMaxDigits || text.find_first_not_of("0123456789") != std::string::npos)
        return false;
    *number = std::stoull(text);
    return true;
}

std::string withoutBlanks(const std::string &text)
{
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The parameter \a name of a content type (RFC 9110 5.6.6), whose value may be a quoted string (5.6.4).
std::string parameter(const std::string &contentType, const std::string &name)
{
    for (std::size_t at = contentType.find(';'); at != std::string::npos;) {
        const std::size_t equals = contentType.find('=', at);
        if (equals == std::string::npos)
            return {};
        const bool isWanted = asciiLower(withoutBlanks(contentType.substr(at + 1, equals - at - 1))) == name;
        std::string value;
        std::size_t i = equals + 1;
        const bool isQuoted = i < contentType.size() && contentType[i] == '"';
        for (i += isQuoted ? 1 : 0; i < contentType.size() && contentType[i] != (isQuoted ? '"' : ';'); ++i) {
            i += isQuoted && contentType[i] == '\\' && i + 1 < contentType.size() ? 1 : 0;
            value += contentType[i];
        }
        if (isWanted)
            return isQuoted ? value : withoutBlanks(value);
        at = contentType.find(';', i);
    }
    return {};
}

/// That of a multipart content type; empty when it is none. Old servers say "multipart/x-byteranges".
std::string boundaryOf(const std::string &contentType)
{
    return asciiLower(contentType.substr(0, 10)) == "multipart/" ? parameter(contentType, "boundary") : std::string();
}

/// A walk through a multipart body.
class PartWalk
{
public:
    PartWalk(const Bytes &wholeBody, const std::string &boundary)
        : body(wholeBody)
        , delimiter("--" + boundary)
    {
    }
    enum class Step { Part, End, Fault };
    Step next(RangePiece *piece);

private:
    bool takeDelimiter();
    bool takeLine(std::string *line);
    bool takeHeaders(ContentRange *range);
    bool isAtEnd() const { return position >= body.size(); }

    const Bytes &body;
    const std::string delimiter;
    std::size_t position = 0;
};

bool PartWalk::takeLine(std::string *line)
{
    const auto from = body.begin() + static_cast<std::ptrdiff_t>(position);
    const auto limit = from + static_cast<std::ptrdiff_t>(std::min(kMaxPartHeader, body.size() - position));
    const auto end = std::find(from, limit, std::uint8_t('\n'));
    if (end == limit)
        return false;
    *line = withoutBlanks(std::string(from, end));
    position += static_cast<std::size_t>(end - from) + 1;
    return true;
}

/// The bytes of a part end where its Content-Range says, so that the delimiter can be looked for at one place only.
/// What stands before the first one is passed over (RFC 2046 5.1.1).
bool PartWalk::takeDelimiter()
{
    std::string line;
    const std::size_t start = position;
    for (int lines = 0; start == 0 ? position < kMaxPartHeader : lines < 3; ++lines) {
        const bool isTaken = takeLine(&line);
        if (!isTaken && body.size() - position >= delimiter.size()) // the last one need not end a line
            return std::equal(delimiter.begin(), delimiter.end(), body.begin() + static_cast<std::ptrdiff_t>(position));
        if (!isTaken || line.compare(0, delimiter.size(), delimiter) == 0)
            return isTaken;
        if (start > 0 && !line.empty())
            return false;
    }
    return false;
}

bool PartWalk::takeHeaders(ContentRange *range)
{
    bool hasRange = false;
    const std::size_t start = position;
    std::string line;
    while (position - start < kMaxPartHeader && takeLine(&line)) {
        if (line.empty())
            return hasRange;
        const std::size_t colon = line.find(':');
        if (colon != std::string::npos && asciiLower(line.substr(0, colon)) == "content-range")
            hasRange = ContentRange::parse(withoutBlanks(line.substr(colon + 1)), range) && range->hasRange;
    }
    return false;
}

PartWalk::Step PartWalk::next(RangePiece *piece)
{
    if (isAtEnd())
        return Step::End;
    const std::size_t start = position;
    if (!takeDelimiter()) { // cut within the delimiter, or before the first one
        const std::size_t mayLack = start == 0 ? kMaxPartHeader : delimiter.size() + 4;
        return body.size() - start < mayLack ? Step::End : Step::Fault;
    }
    const std::size_t tail = delimiter.size() + 2;
    if (position >= tail && position - start >= tail) {
        const std::string line(body.begin() + static_cast<std::ptrdiff_t>(start),
                               body.begin() + static_cast<std::ptrdiff_t>(position));
        if (line.find(delimiter + "--") != std::string::npos)
            return Step::End;
    }
    const std::size_t headers = position;
    if (!takeHeaders(&piece->contentRange))
        return body.size() - headers < kMaxPartHeader ? Step::End : Step::Fault;
    piece->data = body.data() + position;
    piece->length = std::min<std::uint64_t>(piece->contentRange.range.length, body.size() - position);
    position += static_cast<std::size_t>(piece->length);
    return Step::Part;
}

bool readParts(const HttpAnswer &answer, const std::string &boundary, std::vector<RangePiece> *pieces,
               std::string *fault)
{
    PartWalk walk(answer.body, boundary);
    for (;;) {
        RangePiece piece;
        switch (walk.next(&piece)) {
        case PartWalk::Step::End:
            return true;
        case PartWalk::Step::Fault:
            *fault = "the parts of its answer are not as they should be";
            return false;
        case PartWalk::Step::Part:
            pieces->push_back(piece);
        }
    }
}

} // namespace

bool ContentRange::parse(const std::string &text, ContentRange *result)
{
    if (asciiLower(text.substr(0, 6)) != "bytes ")
        return false;
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos)
        return false;
    const std::string range = withoutBlanks(text.substr(6, slash - 6)), total = withoutBlanks(text.substr(slash + 1));
    ContentRange parsed;
    parsed.hasTotal = total != "*";
    if (parsed.hasTotal && !parseNumber(total, &parsed.total))
        return false;
    parsed.hasRange = range != "*";
    if (parsed.hasRange) {
        const std::size_t dash = range.find('-');
        std::uint64_t first = 0, last = 0;
        if (dash == std::string::npos || !parseNumber(range.substr(0, dash), &first) ||
            !parseNumber(range.substr(dash + 1), &last) || last < first || (parsed.hasTotal && last >= parsed.total))
            return false;
        parsed.range = {first, last - first + 1};
    }
    *result = parsed;
    return true;
}

bool readPieces(const HttpAnswer &answer, std::vector<RangePiece> *pieces, std::string *fault)
{
    pieces->clear();
    const std::string boundary = boundaryOf(answer.header("content-type"));
    if (!boundary.empty())
        return readParts(answer, boundary, pieces, fault);
    RangePiece piece;
    if (!ContentRange::parse(answer.header("content-range"), &piece.contentRange) || !piece.contentRange.hasRange) {
        *fault = "its answer does not say which bytes it carries";
        return false;
    }
    piece.data = answer.body.data();
    piece.length = std::min<std::uint64_t>(piece.contentRange.range.length, answer.body.size());
    pieces->push_back(piece);
    return true;
}

bool isCompressed(const HttpAnswer &answer)
{
    const std::string encoding = asciiLower(answer.header("content-encoding"));
    return !encoding.empty() && encoding != "identity";
}

int retryAfter(const HttpAnswer &answer)
{
    const std::string text = answer.header("retry-after");
    std::uint64_t seconds = 0;
    if (parseNumber(text, &seconds))
        return static_cast<int>(std::min<std::uint64_t>(seconds, kMaxPause / 1000) * 1000);
    const std::time_t date = text.empty() ? -1 : curl_getdate(text.c_str(), nullptr);
    if (date < 0)
        return -1;
    const long long pause = (static_cast<long long>(date) - static_cast<long long>(std::time(nullptr))) * 1000;
    return static_cast<int>(std::clamp(pause, 0LL, kMaxPause));
}

} // namespace xrv
