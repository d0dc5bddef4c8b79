#include "loglevels.h"

#include <xrv60/plklog.h>

#include <QDateTime>

using Korvane::Application;

namespace {

/// Least SDK level that passes at the host's level.
int thresholdOf(Application::LogLevel hostLevel)
{
    switch (hostLevel) {
    case Application::LogDebug:
        return PLK_LOG_TRACE;
    case Application::LogWarning:
        return PLK_LOG_INFO;
    case Application::LogError:
        return PLK_LOG_WARNING;
    case Application::LogCritical:
        return PLK_LOG_ERROR;
    case Application::LogFatal:
        return PLK_LOG_FATAL;
    default:
        return PLK_LOG_DEBUG;
    }
}

} // namespace

bool isSdkLevelLogged(int level)
{
    return level >= thresholdOf(Application::getLogLevel());
}

Application::LogLevel toHostLevel(int level)
{
    switch (level) {
    case -1: // a message without a level of its own
    case PLK_LOG_FATAL:
        return Application::LogFatal;
    case 0:
    case PLK_LOG_TRACE:
        return Application::LogDebug;
    case PLK_LOG_INFO:
        return Application::LogWarning;
    case PLK_LOG_WARNING:
        return Application::LogError;
    case PLK_LOG_ERROR:
        return Application::LogCritical;
    default:
        return Application::LogInfo;
    }
}

void logSdkMessage(const QString &text, int level)
{
    Application::logMessage(text, toHostLevel(level), QDateTime::currentDateTime());
}
