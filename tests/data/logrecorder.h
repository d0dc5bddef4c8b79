#pragma once

#include <xrv60/plklog.h>

#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// Takes the SDK's messages of one kind, char or wchar_t, while it lives, and keeps them.
template <typename Char> class LogRecorder : public PLK::ILogger<Char>
{
public:
    LogRecorder() { PLK::CLog::RegisterLogger(this); }
    ~LogRecorder() override { remove(); }
    static void remove() { PLK::CLog::RegisterLogger(static_cast<PLK::ILogger<Char> *>(nullptr)); }

    void attach(void *context) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        attached.insert(context);
    }
    void detach(void *context) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        detached.insert(context);
    }
    bool isLevelEnabled(void *, int level) override { return level >= threshold; }
    void write(void *context, int level, const Char *text) override
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            strangers += attached.count(context) == 0 ? 1 : 0;
            lines.emplace_back(level, text);
        }
        if (onWrite)
            onWrite(level);
    }
    /// How many lines of \a level have \a words in them.
    int count(int level, const std::basic_string<Char> &words)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        int found = 0;
        for (const auto &[lineLevel, text] : lines)
            found += lineLevel == level && text.find(words) != text.npos ? 1 : 0;
        return found;
    }

    int threshold = PLK_LOG_TRACE;
    std::function<void(int level)> onWrite;
    std::mutex mutex; ///< guards what follows
    std::vector<std::pair<int, std::basic_string<Char>>> lines;
    std::set<void *> attached, detached;
    int strangers = 0; ///< messages of threads that were not attached
};
