#pragma once

#include "stream/values/httpexchange.h"

#include <curl/curl.h>

#include <chrono>
#include <memory>

namespace xrv {

/// A request on its way: the library's handle and what came so far. Belongs to the client's thread.
class HttpTransfer
{
public:
    using Clock = std::chrono::steady_clock;

    explicit HttpTransfer(HttpRequest request);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer &) = delete;
    HttpTransfer &operator=(const HttpTransfer &) = delete;

    CURL *handle() const { return easy.get(); }
    /// The answer after the library is done with the handle.
    HttpAnswer finish(CURLcode code);
    /// The answer when it is given up for want of progress.
    HttpAnswer finishStalled();
    /// The answer, with what came of it, when it is broken off.
    HttpAnswer finishUseless();
    /// Next to nothing came for the stall time-out.
    bool isStalled(Clock::time_point now);

private:
    void setUp();
    void setUpSecurity();
    void setUpForFlood();
    bool takeHeader(const std::string &line);
    bool takeBody(const char *data, std::size_t length);
    std::uint64_t bodyLimit() const;
    bool usesSink() const { return answer.status == 200 && request.wholeSink; }
    bool flushToSink();
    void dropHalfHead();
    void restartWindow(Clock::time_point now);
    HttpOutcome outcomeOf(CURLcode code) const;
    static int onSocket(void *self, curl_socket_t socket, curlsocktype purpose);
    static std::size_t onHeader(char *data, std::size_t size, std::size_t count, void *self);
    static std::size_t onBody(char *data, std::size_t size, std::size_t count, void *self);

    struct EasyDeleter
    {
        void operator()(CURL *handle) const { curl_easy_cleanup(handle); }
    };
    struct ListDeleter
    {
        void operator()(curl_slist *list) const { curl_slist_free_all(list); }
    };

    const HttpRequest request;
    HttpAnswer answer;
    std::unique_ptr<curl_slist, ListDeleter> headerLines;
    std::size_t headerBytes = 0;
    bool isTooLong = false, hasBadHeaders = false, hasWholeHead = false;
    Clock::time_point windowStart;
    std::uint64_t windowBytes = 0;
    char errorText[CURL_ERROR_SIZE] = {};
    std::unique_ptr<CURL, EasyDeleter> easy; ///< last: cleaning up may call back
};

} // namespace xrv
