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
    void forget();

private:
    struct SeveralRanges
    {
        Answer answer = Answer::Unknown;
        int doubts = 0;
    };
    SeveralRanges &entry(const std::string &server);

    mutable std::mutex mutex; ///< guards severalRanges
    std::map<std::string, SeveralRanges> severalRanges;
};

} // namespace xrv
