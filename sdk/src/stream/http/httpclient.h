#pragma once

#include "stream/values/httpexchange.h"

#include <condition_variable>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace xrv {

/// Speaks HTTP(S) for all streams of the process, on one thread of its own: connections are kept and shared. So many
/// requests per server are on their way at a time, the others wait: a few where each takes a connection of its own,
/// many from the first answer on that came by HTTP/2, where one connection carries them all. Any thread may call.
class HttpClient
{
public:
    /// Never destroyed: threads that outlive the library's static objects may still read.
    static HttpClient &instance();

    HttpClient();
    ~HttpClient();

    /// Carries out \a requests, side by side where there are several, and waits for the answers, in the same order.
    /// When \a cancel is raised it returns within milliseconds, with what is not there as cancelled; requests that are
    /// on their way and have an Afterlife go on by themselves.
    std::vector<HttpAnswer> perform(const std::vector<HttpRequest> &requests, const CancelFlag &cancel);

    /// Sends \a request, whose afterlife gets the answer, and waits for nothing.
    void send(const HttpRequest &request);

    /// Ends the thread and closes all connections; what waits is cancelled. The next request starts it again.
    void stop();

    static constexpr int kMaxPerServer = 6;
    static constexpr int kMaxUnattended = 4;    ///< besides, of those that nobody waits for
    static constexpr int kMaxMultiplexed = 100; ///< servers allow that many streams a connection (RFC 9113 6.5.2)

private:
    struct Exchange;
    class Loop;
    using ExchangePtr = std::shared_ptr<Exchange>;

    std::shared_ptr<Loop> startedLoop();

    std::mutex mutex; ///< guards the members below
    std::shared_ptr<Loop> loop;
    std::thread thread;
};

} // namespace xrv
