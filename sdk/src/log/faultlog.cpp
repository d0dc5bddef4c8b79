#include "faultlog.h"

#include "logger.h"

#include "base/utf8.h"

#include <xrv60/plklog.h>

#include <algorithm>
#include <new>
#include <utility>

namespace xrv {

FaultLog::FaultLog(std::string fileName)
    : name(std::move(fileName))
{
}

void FaultLog::damaged(const std::string &sentence)
{
    note(PLK_LOG_WARNING, sentence);
}

void FaultLog::cellsDamaged(const std::string &sentence)
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        if (firstCellDamage.empty())
            firstCellDamage = sentence;
    }
    damaged(sentence);
}

std::string FaultLog::cellDamage() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return firstCellDamage;
}

void FaultLog::failed(const PLK::CError &error)
{
    if (error.IsSuccess() || error.GetErrorNumber() == PLK_ERR_CANCELLED)
        return;
    const bool ranOut = error.GetErrorNumber() == PLK_ERR_OUT_OF_MEMORY;
    try {
        note(ranOut ? PLK_LOG_FATAL : PLK_LOG_ERROR, error.GetErrorMessage());
    } catch (const std::bad_alloc &) {
        // There is no memory for the words either; the caller still has the error.
    }
}

void FaultLog::note(int level, const std::string &sentence)
{
    const int shownLevel = isNewKind(level, sentence) ? level : int(PLK_LOG_TRACE);
    if (logEnabled(shownLevel))
        log(shownLevel, wideFromUtf8("\"" + name + "\": " + sentence));
}

bool FaultLog::isNewKind(int level, const std::string &sentence)
{
    constexpr std::size_t kMaxKinds = 100; // more than there are sentences; texts from elsewhere have no such bound
    std::string kind = (level == PLK_LOG_WARNING ? "damage " : "failure ") + sentence;
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    kind.erase(std::remove_if(kind.begin(), kind.end(), isDigit), kind.end());
    const std::lock_guard<std::mutex> lock(mutex);
    return kinds.size() < kMaxKinds && kinds.insert(std::move(kind)).second;
}

} // namespace xrv
