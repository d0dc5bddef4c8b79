#include "fetchround.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace xrv {

namespace {

constexpr std::uint64_t kProgressThatCounts = 4096; // or half of what was lacking
constexpr int kMaxRounds = 1000;
constexpr auto kCancelPoll = std::chrono::milliseconds(5);

void wait(int milliseconds, const CancelFlag &cancel)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (!cancel.isRaised() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(kCancelPoll);
}

} // namespace

bool FetchRound::isUseful() const
{
    return gained > 0 && gained >= std::min(kProgressThatCounts, lacking / 2);
}

FetchPatience::FetchPatience(const StreamOptions &streamOptions)
    : options(streamOptions)
    , backOff(streamOptions.firstBackOff)
{
}

bool FetchPatience::goOn(const FetchRound &round, const CancelFlag &cancel)
{
    if (++rounds > kMaxRounds) // whatever a server does, there is an end
        return false;
    if (round.isFallback) // asked in another way at once: nothing failed
        return true;
    // Answers that are short or break off again and again but bring something each time are worth going on with.
    if (round.isUseful()) {
        failures = 0;
        backOff = options.firstBackOff;
        if (round.pause < 0)
            return true;
    }
    failures += round.isTimeOut ? 2 : 1; // that one took long enough
    if (failures >= options.tries || round.pause > options.maxRetryAfter)
        return false;
    wait(std::max(round.pause, backOff), cancel);
    backOff *= 2;
    return true;
}

RangeStyle::RangeStyle(std::string serverName)
    : server(std::move(serverName))
{
}

std::vector<RangeGroup> RangeStyle::plan(const ByteRangeSet &lacking) const
{
    const ServerTraits &traits = ServerTraits::instance();
    const std::uint64_t gap = traits.multiplexes(server) ? kMultiplexedGap : kRequestGap;
    ServerTraits::Answer several = traits.takesSeveralRanges(server);
    // Single ranges are nearly as quick there, and the whole of a file, which is what some servers answer to several,
    // would keep the others of the connection waiting: that is found out beside it (see RangeFetcher::askForSeveral()).
    if (several == ServerTraits::Answer::Unknown && traits.multiplexes(server))
        several = ServerTraits::Answer::No;
    if (outcome == FetchRound::Several::Fine)
        return planRequests(lacking, several, gap);
    std::vector<RangeGroup> groups = planRequests(lacking, ServerTraits::Answer::No, gap);
    // One that may be overloaded is not to be asked a hundred times at once.
    if (outcome == FetchRound::Several::Doubted && !singlesCome)
        groups.resize(1);
    return groups;
}

void RangeStyle::learn(const FetchRound &round)
{
    if (round.gained > 0)
        ServerTraits::instance().setMultiplexes(server, round.isMultiplexed);
    if (outcome == FetchRound::Several::Fine) {
        outcome = round.several;
    } else if (!singlesCome && round.gained > 0) {
        singlesCome = true;
        if (outcome == FetchRound::Several::Refused)
            ServerTraits::instance().setTakesSeveralRanges(server, false);
        else
            ServerTraits::instance().doubtSeveralRanges(server);
    }
}

} // namespace xrv
