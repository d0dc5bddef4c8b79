#include "servertraits.h"

namespace xrv {

namespace {

constexpr std::size_t kMaxServers = 1000;

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
    if (found == severalRanges.end())
        return Answer::Unknown;
    return found->second ? Answer::Yes : Answer::No;
}

void ServerTraits::setTakesSeveralRanges(const std::string &server, bool takes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (severalRanges.size() >= kMaxServers)
        severalRanges.clear();
    severalRanges[server] = takes;
}

void ServerTraits::forget()
{
    const std::lock_guard<std::mutex> lock(mutex);
    severalRanges.clear();
}

} // namespace xrv
