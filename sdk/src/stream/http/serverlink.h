#pragma once

#include "stream/values/httpexchange.h"
#include "stream/values/streamaddress.h"
#include "stream/values/streamoptions.h"

#include <mutex>

namespace xrv {

/// The way to one address: makes its requests, follows redirects as far as they may be followed, and remembers where
/// they led. Any thread.
class ServerLink
{
public:
    /// \a watch is told how much came of files that are given as a whole; null for none.
    ServerLink(StreamAddress address, StreamOptions options, std::shared_ptr<OpenWatch> watch = nullptr);

    const StreamAddress &address() const { return streamAddress; }
    const StreamOptions &options() const { return streamOptions; }
    /// A request for the bytes \a range ("0-99,200-299", empty for all), of which at most \a limit are taken.
    HttpRequest request(const std::string &range, std::uint64_t limit) const;
    /// Sends \a request to where the address led to last, and waits for nothing: its afterlife gets the answer.
    void send(HttpRequest request) const;
    /// Carries out \a requests with their redirects. An answer with a redirect that must not be followed is Invalid and
    /// says why.
    std::vector<HttpAnswer> ask(const std::vector<HttpRequest> &requests, const CancelFlag &cancel);

private:
    struct Target
    {
        std::string url, server;
        bool isOwn = true; ///< the address's own server, which may have its password
    };
    Target ownTarget() const;
    Target target() const;
    void setTarget(const Target &found);
    void apply(const Target &to, HttpRequest *request) const;
    std::string redirect(const HttpAnswer &answer, Target *to) const;
    std::vector<HttpAnswer> askFrom(const Target &start, const std::vector<HttpRequest> &requests,
                                    const CancelFlag &cancel);

    const StreamAddress streamAddress;
    const StreamOptions streamOptions;
    const std::shared_ptr<OpenWatch> watch;
    mutable std::mutex mutex; ///< guards current
    Target current;           ///< where the address led to last
};

} // namespace xrv
