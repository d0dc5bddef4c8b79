#include "servertraits.h"

#include <utility>

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
    const auto found = servers.find(server);
    return found == servers.end() ? Answer::Unknown : found->second.severalRanges;
}

ServerTraits::Server &ServerTraits::entry(const std::string &server)
{
    if (servers.size() >= kMaxServers)
        servers.clear();
    return servers[server];
}

void ServerTraits::setTakesSeveralRanges(const std::string &server, bool takes)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server &known = entry(server);
    known.severalRanges = takes ? Answer::Yes : Answer::No;
    known.doubts = 0;
}

void ServerTraits::doubtSeveralRanges(const std::string &server)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server &known = entry(server);
    if (++known.doubts >= kDoubtsThatDecide)
        known.severalRanges = Answer::No;
}

bool ServerTraits::shallAskForSeveral(const std::string &server)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server &known = entry(server);
    const bool wasAsked = std::exchange(known.isAsked, true);
    return !wasAsked && known.severalRanges == Answer::Unknown;
}

bool ServerTraits::multiplexes(const std::string &server) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = servers.find(server);
    return found != servers.end() && found->second.multiplexes;
}

void ServerTraits::setMultiplexes(const std::string &server, bool does)
{
    const std::lock_guard<std::mutex> lock(mutex);
    entry(server).multiplexes = does;
}

void ServerTraits::forget()
{
    const std::lock_guard<std::mutex> lock(mutex);
    servers.clear();
}

} // namespace xrv
