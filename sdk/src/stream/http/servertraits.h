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
    void forget();

private:
    mutable std::mutex mutex; ///< guards severalRanges
    std::map<std::string, bool> severalRanges;
};

} // namespace xrv
