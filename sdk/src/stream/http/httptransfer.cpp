#include "httptransfer.h"

#include "base/utf8.h"
#include "io/filenames.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <utility>

#ifndef _WIN32
#include <sys/socket.h>
#endif

namespace xrv {

namespace {

constexpr std::size_t kMaxHeaderBytes = 65536;
constexpr std::size_t kMaxErrorBody = 65536;     // pages that explain an error are passed over
constexpr std::uint64_t kMinPerStallTime = 4096; // a drip that would take hours is a stall too
constexpr long kBufferSize = 131072;
constexpr int kFloodBuffer = 16384;
constexpr std::size_t kSinkPiece = std::size_t(1) << 20;
constexpr std::size_t kMaxDigits = 18;

std::string trimmed(const std::string &text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

} // namespace

std::string HttpAnswer::header(const std::string &name) const
{
    for (auto it = headers.rbegin(); it != headers.rend(); ++it)
        if (it->first == name)
            return it->second;
    return {};
}

std::uint64_t HttpAnswer::contentLength() const
{
    const std::string length = header("content-length");
    const bool isNumber =
        !length.empty() && length.size() <= kMaxDigits && length.find_first_not_of("0123456789") == std::string::npos;
    return isNumber ? std::stoull(length) : 0;
}

HttpTransfer::HttpTransfer(HttpRequest request)
    : request(std::move(request))
    , windowStart(Clock::now())
    , easy(curl_easy_init())
{
    if (!easy)
        throw std::bad_alloc();
    setUp();
}

HttpTransfer::~HttpTransfer() = default;

void HttpTransfer::setUp()
{
    std::vector<std::string> lines = request.headers;
    lines.emplace_back("Accept: */*");
    lines.emplace_back("Accept-Encoding: identity"); // a compressed piece of a file is of no use
    for (const std::string &line : lines) {
        curl_slist *longer = curl_slist_append(headerLines.get(), line.c_str());
        if (!longer)
            throw std::bad_alloc();
        (void)headerLines.release();
        headerLines.reset(longer);
    }
    CURL *const curl = easy.get();
    curl_easy_setopt(curl, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headerLines.get());
    if (!request.range.empty())
        curl_easy_setopt(curl, CURLOPT_RANGE, request.range.c_str());
    if (!request.userAgent.empty())
        curl_easy_setopt(curl, CURLOPT_USERAGENT, request.userAgent.c_str());
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 0L); // the caller checks where to
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_TCP_KEEPALIVE, 1L);
#if LIBCURL_VERSION_NUM >= 0x075700
    curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L); // who cancels does not wait for a name that is being looked up
#endif
    curl_easy_setopt(curl, CURLOPT_BUFFERSIZE, kBufferSize);
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT_MS, long(request.connectTimeout));
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, errorText);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, &HttpTransfer::onHeader);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &HttpTransfer::onBody);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, this);
    setUpSecurity();
    if (request.mayFlood)
        setUpForFlood();
}

void HttpTransfer::setUpForFlood()
{
    CURL *const curl = easy.get();
    curl_easy_setopt(curl, CURLOPT_HTTP_VERSION, long(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(curl, CURLOPT_FRESH_CONNECT, 1L);
    curl_easy_setopt(curl, CURLOPT_FORBID_REUSE, 1L);
    curl_easy_setopt(curl, CURLOPT_SOCKOPTFUNCTION, &HttpTransfer::onSocket);
}

int HttpTransfer::onSocket(void *, curl_socket_t socket, curlsocktype)
{
    const int size = kFloodBuffer;
    ::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, reinterpret_cast<const char *>(&size), sizeof size);
    return CURL_SOCKOPT_OK; // a larger one does no harm but to the link
}

void HttpTransfer::setUpSecurity()
{
    CURL *const curl = easy.get();
#if LIBCURL_VERSION_NUM >= 0x075500
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
#else
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS, long(CURLPROTO_HTTP | CURLPROTO_HTTPS));
#endif
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 2L);
    const char *const ofEnvironment = std::getenv("SSL_CERT_FILE");
    const std::string caFile = !request.caFile.empty() ? request.caFile : ofEnvironment ? ofEnvironment : "";
    if (!caFile.empty())
        curl_easy_setopt(curl, CURLOPT_CAINFO, caFile.c_str());
    if (!request.sendsCredentials)
        return;
    curl_easy_setopt(curl, CURLOPT_HTTPAUTH, long(CURLAUTH_BASIC));
    curl_easy_setopt(curl, CURLOPT_USERNAME, request.user.c_str());
    curl_easy_setopt(curl, CURLOPT_PASSWORD, request.password.c_str());
}

std::size_t HttpTransfer::onHeader(char *data, std::size_t size, std::size_t count, void *self)
{
    try {
        return static_cast<HttpTransfer *>(self)->takeHeader(std::string(data, size * count)) ? size * count : 0;
    } catch (const std::bad_alloc &) {
        return 0;
    }
}

std::size_t HttpTransfer::onBody(char *data, std::size_t size, std::size_t count, void *self)
{
    try {
        return static_cast<HttpTransfer *>(self)->takeBody(data, size * count) ? size * count : 0;
    } catch (const std::bad_alloc &) {
        return 0;
    }
}

bool HttpTransfer::takeHeader(const std::string &line)
{
    if (headerBytes == 0)
        restartWindow(Clock::now()); // what an answer took to begin is not held against its body
    headerBytes += line.size();
    windowBytes += line.size();
    if (headerBytes > kMaxHeaderBytes) {
        hasBadHeaders = true;
        return false;
    }
    if (line.compare(0, 5, "HTTP/") == 0) { // also after an interim answer or that of a proxy
        answer.headers.clear();
        hasWholeHead = false;
        const std::size_t blank = line.find(' ');
        answer.status = blank == std::string::npos ? 0 : std::atoi(line.c_str() + blank);
        return true;
    }
    hasWholeHead = trimmed(line).empty();
    const std::size_t colon = line.find(':');
    if (colon != std::string::npos)
        answer.headers.emplace_back(asciiLower(trimmed(line.substr(0, colon))), trimmed(line.substr(colon + 1)));
    return true;
}

std::uint64_t HttpTransfer::bodyLimit() const
{
    if (answer.status == 206)
        return request.partialLimit;
    return answer.status == 200 ? request.wholeLimit : kMaxErrorBody;
}

bool HttpTransfer::takeBody(const char *data, std::size_t length)
{
    windowBytes += length;
    // There is no use in taking the beginning of a whole file that is not wanted as a whole.
    if (answer.bodyLength == 0 && answer.status == 200 && answer.contentLength() > bodyLimit()) {
        isTooLong = true;
        return false;
    }
    const std::uint64_t room = bodyLimit() - std::min(bodyLimit(), answer.bodyLength);
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(room, length));
    answer.body.insert(answer.body.end(), data, data + taken);
    answer.bodyLength += taken;
    isTooLong = taken < length;
    if (answer.status == 200 && request.watch) {
        request.watch->received = answer.bodyLength;
        request.watch->expected = answer.contentLength();
    }
    if (usesSink() && answer.body.size() >= kSinkPiece && !flushToSink())
        return false;
    return !isTooLong;
}

bool HttpTransfer::flushToSink()
{
    const Bytes piece = std::move(answer.body);
    answer.body.clear();
    return request.wholeSink->take(answer, answer.bodyLength - piece.size(), piece.data(), piece.size());
}

bool HttpTransfer::isStalled(Clock::time_point now)
{
    if (now - windowStart < std::chrono::milliseconds(request.stallTimeout))
        return false;
    if (windowBytes < kMinPerStallTime)
        return true;
    restartWindow(now);
    return false;
}

void HttpTransfer::restartWindow(Clock::time_point now)
{
    windowStart = now;
    windowBytes = 0;
}

HttpOutcome HttpTransfer::outcomeOf(CURLcode code) const
{
    switch (code) {
    case CURLE_OK:
        return HttpOutcome::Complete;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_ISSUER_ERROR:
        return HttpOutcome::Distrusted;
    case CURLE_WRITE_ERROR: // one of our own callbacks wanted no more
        return isTooLong ? HttpOutcome::TooLong : HttpOutcome::Invalid;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_URL_MALFORMAT:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
        return HttpOutcome::Invalid;
    case CURLE_OPERATION_TIMEDOUT:
        return HttpOutcome::TimedOut;
    default:
        return answer.status != 0 ? HttpOutcome::Cut : HttpOutcome::Unreachable;
    }
}

/// Of a head that broke off nothing can be told: the header that says what the body is may be missing.
void HttpTransfer::dropHalfHead()
{
    if (hasWholeHead)
        return;
    answer.status = 0;
    answer.headers.clear();
}

HttpAnswer HttpTransfer::finish(CURLcode code)
{
    long protocol = 0;
    curl_easy_getinfo(easy.get(), CURLINFO_HTTP_VERSION, &protocol);
    answer.isMultiplexed = protocol == CURL_HTTP_VERSION_2_0;
    if (usesSink() && !answer.body.empty() && !flushToSink() && code == CURLE_OK)
        code = CURLE_WRITE_ERROR;
    answer.outcome = hasBadHeaders ? HttpOutcome::Invalid : outcomeOf(code);
    if (answer.outcome == HttpOutcome::TooLong)
        answer.failure = "the answer is longer than what was asked for";
    else if (answer.outcome != HttpOutcome::Complete)
        answer.failure = errorText[0] != 0 ? errorText : curl_easy_strerror(code);
    dropHalfHead();
    return std::move(answer);
}

HttpAnswer HttpTransfer::finishStalled()
{
    answer.outcome = HttpOutcome::TimedOut;
    answer.failure = "nothing came for " + std::to_string(request.stallTimeout / 1000.0).substr(0, 4) + " seconds";
    dropHalfHead();
    return std::move(answer);
}

HttpAnswer HttpTransfer::finishUseless()
{
    answer.outcome = HttpOutcome::Cancelled;
    dropHalfHead();
    return std::move(answer);
}

} // namespace xrv
