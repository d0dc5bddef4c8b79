#pragma once

#include <map>
#include <mutex>
#include <string>

namespace xrv {

/// What the process learned about servers by their behaviour. Any thread.
class ServerTraits
{
public:
    enum class Answer { Unknown, Yes, No };

    static ServerTraits &instance();
    /// Several ranges in one request come in one answer.
    Answer takesSeveralRanges(const std::string &server) const;
    void setTakesSeveralRanges(const std::string &server, bool takes);
    /// A request for several ranges failed where one for a single range did not. Once may be chance; twice, with none
    /// in between that was answered, is how the server is.
    void doubtSeveralRanges(const std::string &server);
    /// True once as long as that is not known: somebody is to find it out.
    bool shallAskForSeveral(const std::string &server);
    /// A connection to it carries many requests at a time.
    bool multiplexes(const std::string &server) const;
    void setMultiplexes(const std::string &server, bool does);
    void forget();

private:
    struct Server
    {
        Answer severalRanges = Answer::Unknown;
        int doubts = 0;
        bool isAsked = false; ///< for several
        bool multiplexes = false;
    };
    Server &entry(const std::string &server);

    mutable std::mutex mutex; ///< guards servers
    std::map<std::string, Server> servers;
};

} // namespace xrv
