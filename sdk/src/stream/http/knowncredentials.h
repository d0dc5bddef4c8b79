#pragma once

#include "stream/values/streamaddress.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace xrv {

/// User names and passwords that servers accepted in this process. Addresses are shown, logged and handed out without
/// them; with these, one that was handed out can be opened again. In memory only. Any thread.
class KnownCredentials
{
public:
    static KnownCredentials &instance();
    /// The server accepted \a address with what it has.
    void remember(const StreamAddress &address);
    /// Gives \a address the user and password of its server where it has no password, and the same user or none.
    void complete(StreamAddress *address) const;

private:
    mutable std::mutex mutex; ///< guards byServer
    std::map<std::string, std::pair<std::string, std::string>> byServer;
};

} // namespace xrv
