#pragma once

#include "rangeplan.h"

#include "stream/values/streamoptions.h"

#include "base/cancelflag.h"

#include <xrv60/plkerror.h>

#include <cstdint>
#include <string>

namespace xrv {

/// What the answers of one round of requests amount to.
struct FetchRound
{
    /// How requests for several ranges fared.
    enum class Several {
        Fine,
        Doubted, ///< failed as any request may fail
        Refused  ///< answered as if the server did not understand them
    };

    PLK::CError trouble;        ///< worth another try
    int pause = -1;             ///< milliseconds the server wants to be left alone
    bool isTimeOut = false;     ///< the server kept silent
    bool isInSink = false;      ///< the whole file went there
    bool isFallback = false;    ///< another way of asking was found to be needed
    bool isMultiplexed = false; ///< an answer came by HTTP/2
    Several several = Several::Fine;
    std::uint64_t lacking = 0, gained = 0; ///< bytes before, and how many of these came

    /// A few bytes do not count: a server that gives one per request would be asked a thousand times.
    bool isUseful() const;
};

/// How often and after what pauses to try.
class FetchPatience
{
public:
    explicit FetchPatience(const StreamOptions &streamOptions);
    /// After a round that left something to be wished: waits before the next try, for the pause that the server asks
    /// for (RFC 9110 10.2.3), or one that doubles each time, whichever is longer. False when there is to be none.
    bool goOn(const FetchRound &round, const CancelFlag &cancel);

private:
    const StreamOptions &options;
    int backOff;
    int failures = 0, rounds = 0;
};

/// How one fetch asks for several ranges: at once, as long as the server is not known to refuse it, or one by one. A
/// server that fails at several is asked for single ones before it is judged, and only where it answers these is that
/// remembered.
class RangeStyle
{
public:
    explicit RangeStyle(std::string serverName);
    std::vector<RangeGroup> plan(const ByteRangeSet &lacking) const;
    void learn(const FetchRound &round);

private:
    const std::string server;
    FetchRound::Several outcome = FetchRound::Several::Fine; ///< of the first request for several that failed
    bool singlesCome = false;                                ///< since then
};

} // namespace xrv
