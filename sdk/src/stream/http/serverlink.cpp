#include "serverlink.h"

#include "httpclient.h"

#include "base/utf8.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

#include <curl/curl.h>

#include <memory>

namespace xrv {

namespace {

constexpr int kMaxRedirects = 5;

struct UrlDeleter
{
    void operator()(CURLU *url) const { curl_url_cleanup(url); }
};
using UrlPtr = std::unique_ptr<CURLU, UrlDeleter>;

std::string part(CURLU *url, CURLUPart which, unsigned flags = 0)
{
    char *text = nullptr;
    if (curl_url_get(url, which, &text, flags) != CURLUE_OK || !text)
        return {};
    std::string result = text;
    curl_free(text);
    return result;
}

/// All that name another place for a request with GET (RFC 9110 15.4).
bool isRedirect(int status)
{
    return status == 301 || status == 302 || status == 303 || status == 307 || status == 308;
}

/// The remembered place may have been meant for a while only: addresses with a signature expire, mirrors come and go.
/// What a place says about a condition, a range or its load is no sign of that.
bool mayBeOutdated(const HttpAnswer &answer)
{
    return answer.outcome != HttpOutcome::Cancelled &&
           (answer.status == 0 || (answer.status >= 400 && answer.status < 500 && answer.status != 412 &&
                                   answer.status != 416 && answer.status != 429));
}

} // namespace

ServerLink::ServerLink(StreamAddress address, StreamOptions options, std::shared_ptr<OpenWatch> watch)
    : streamAddress(std::move(address))
    , streamOptions(std::move(options))
    , watch(std::move(watch))
    , current(ownTarget())
{
}

ServerLink::Target ServerLink::ownTarget() const
{
    return {streamAddress.url(), streamAddress.server(), true};
}

ServerLink::Target ServerLink::target() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return current;
}

void ServerLink::setTarget(const Target &found)
{
    const std::lock_guard<std::mutex> lock(mutex);
    current = found;
}

HttpRequest ServerLink::request(const std::string &range, std::uint64_t limit) const
{
    HttpRequest request;
    request.range = range;
    (range.empty() ? request.wholeLimit : request.partialLimit) = limit;
    request.userAgent = streamOptions.userAgent;
    request.caFile = streamOptions.caFile;
    request.connectTimeout = streamOptions.connectTimeout;
    request.stallTimeout = streamOptions.stallTimeout;
    request.watch = watch;
    return request;
}

void ServerLink::apply(const Target &to, HttpRequest *request) const
{
    request->url = to.url;
    request->server = to.server;
    request->sendsCredentials = to.isOwn && streamAddress.hasCredentials();
    request->user = request->sendsCredentials ? streamAddress.userName() : std::string();
    request->password = request->sendsCredentials ? streamAddress.userPassword() : std::string();
}

/// Moves \a to on to where \a answer points; returns why not, or nothing.
std::string ServerLink::redirect(const HttpAnswer &answer, Target *to) const
{
    const UrlPtr url(curl_url());
    const std::string location = answer.header("location");
    if (!url || curl_url_set(url.get(), CURLUPART_URL, to->url.c_str(), 0) != CURLUE_OK || location.empty() ||
        curl_url_set(url.get(), CURLUPART_URL, location.c_str(), 0) != CURLUE_OK)
        return "it points to another place that is no web address";
    const std::string scheme = part(url.get(), CURLUPART_SCHEME);
    if (scheme != "http" && scheme != "https")
        return "it points to a place outside the web (\"" + scheme + "\"), which is not followed";
    if (scheme == "http" && to->server.compare(0, 6, "https:") == 0)
        return "it points from a secure connection to an open one, which is not followed";
    curl_url_set(url.get(), CURLUPART_USER, nullptr, 0);
    curl_url_set(url.get(), CURLUPART_PASSWORD, nullptr, 0);
    curl_url_set(url.get(), CURLUPART_FRAGMENT, nullptr, 0);
    to->url = part(url.get(), CURLUPART_URL);
    to->server = scheme + "://" + asciiLower(part(url.get(), CURLUPART_HOST)) + ':' +
                 part(url.get(), CURLUPART_PORT, CURLU_DEFAULT_PORT);
    // Once led away, it stays so: another server could send us back to have the password tried anywhere.
    to->isOwn = to->isOwn && to->server == streamAddress.server();
    return {};
}

void ServerLink::send(HttpRequest request) const
{
    apply(target(), &request);
    HttpClient::instance().send(request);
}

std::vector<HttpAnswer> ServerLink::ask(const std::vector<HttpRequest> &requests, const CancelFlag &cancel)
{
    const Target start = target();
    std::vector<HttpAnswer> answers = askFrom(start, requests, cancel);
    const Target own = ownTarget();
    if (start.url == own.url || answers.empty() || !mayBeOutdated(answers.front()))
        return answers;
    setTarget(own);
    return askFrom(own, requests, cancel);
}

std::vector<HttpAnswer> ServerLink::askFrom(const Target &start, const std::vector<HttpRequest> &requests,
                                            const CancelFlag &cancel)
{
    std::vector<HttpAnswer> answers(requests.size());
    std::vector<Target> targets(requests.size(), start);
    std::vector<std::size_t> open(requests.size());
    for (std::size_t i = 0; i < open.size(); ++i)
        open[i] = i;
    for (int hop = 0; !open.empty(); ++hop) {
        std::vector<HttpRequest> round;
        for (const std::size_t i : open) {
            round.push_back(requests[i]);
            apply(targets[i], &round.back());
        }
        std::vector<HttpAnswer> came = HttpClient::instance().perform(round, cancel);
        std::vector<std::size_t> redirected;
        for (std::size_t k = 0; k < open.size(); ++k) {
            const std::size_t i = open[k];
            answers[i] = std::move(came[k]);
            if (!isRedirect(answers[i].status) || answers[i].outcome == HttpOutcome::Cancelled) {
                if (hop > 0 && answers[i].status >= 200 && answers[i].status < 300)
                    setTarget(targets[i]);
                continue;
            }
            const std::string refusal = hop < kMaxRedirects ? redirect(answers[i], &targets[i])
                                                            : std::string("it points from place to place without end");
            if (refusal.empty()) {
                redirected.push_back(i);
                continue;
            }
            answers[i].outcome = HttpOutcome::Invalid;
            answers[i].failure = refusal;
        }
        open = std::move(redirected);
    }
    return answers;
}

} // namespace xrv
