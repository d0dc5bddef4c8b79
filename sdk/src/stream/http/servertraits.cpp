#include "servertraits.h"

namespace xrv {

namespace {

constexpr std::size_t kMaxServers = 1000;
constexpr int kDoubtsThatDecide = 2;

} // namespace

ServerTraits &ServerTraits::instance()
{
    static auto *traits = new ServerTraits;
    return *traits;
}

ServerTraits::Answer ServerTraits::takesSeveralRanges(const std::string &server) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = severalRanges.find(server);
    return found == severalRanges.end() ? Answer::Unknown : found->second.answer;
}

ServerTraits::SeveralRanges &ServerTraits::entry(const std::string &server)
{
    if (severalRanges.size() >= kMaxServers)
        severalRanges.clear();
    return severalRanges[server];
}

void ServerTraits::setTakesSeveralRanges(const std::string &server, bool takes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    entry(server) = {takes ? Answer::Yes : Answer::No, 0};
}

void ServerTraits::doubtSeveralRanges(const std::string &server)
{
    const std::lock_guard<std::mutex> lock(mutex);
    SeveralRanges &known = entry(server);
    if (++known.doubts >= kDoubtsThatDecide)
        known.answer = Answer::No;
}

void ServerTraits::forget()
{
    const std::lock_guard<std::mutex> lock(mutex);
    severalRanges.clear();
}

} // namespace xrv
