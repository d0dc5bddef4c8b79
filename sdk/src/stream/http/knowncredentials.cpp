#include "knowncredentials.h"

namespace xrv {

namespace {

constexpr std::size_t kMaxServers = 1000;

} // namespace

KnownCredentials &KnownCredentials::instance()
{
    static auto *credentials = new KnownCredentials;
    return *credentials;
}

void KnownCredentials::remember(const StreamAddress &address)
{
    if (!address.hasCredentials())
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    if (byServer.size() >= kMaxServers)
        byServer.clear();
    byServer[address.server()] = {address.userName(), address.userPassword()};
}

void KnownCredentials::complete(StreamAddress *address) const
{
    if (!address->userPassword().empty())
        return;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = byServer.find(address->server());
    if (found == byServer.end() || (!address->userName().empty() && address->userName() != found->second.first))
        return;
    address->setCredentials(found->second.first, found->second.second);
}

} // namespace xrv
