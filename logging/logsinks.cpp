#include "logsinks.h"

#include "settings/pluginsettings.h"

#include <QDGui/application.h>

#include <QDateTime>

using Korvane::Application;

namespace {

/// Least SDK level that passes at the host's level.
int thresholdOf(Application::LogLevel hostLevel)
{
    switch (hostLevel) {
    case Application::LogTrace:
        return PLK_LOG_TRACE;
    case Application::LogInfo:
        return PLK_LOG_INFO;
    case Application::LogWarning:
        return PLK_LOG_WARNING;
    case Application::LogError:
        return PLK_LOG_ERROR;
    case Application::LogFatal:
        return PLK_LOG_FATAL;
    default:
        return PLK_LOG_DEBUG;
    }
}

/// The host's level for a message of the SDK's \a level.
Application::LogLevel toHostLevel(int level)
{
    switch (level) {
    case -1: // a message without a level of its own
    case PLK_LOG_FATAL:
        return Application::LogFatal;
    case 0:
    case PLK_LOG_TRACE:
        return Application::LogTrace;
    case PLK_LOG_INFO:
        return Application::LogInfo;
    case PLK_LOG_WARNING:
        return Application::LogWarning;
    case PLK_LOG_ERROR:
        return Application::LogError;
    default:
        return Application::LogDebug;
    }
}

void logSdkMessage(const QString &text, int level)
{
    Application::logMessage(text, toHostLevel(level), QDateTime::currentDateTime());
}

CTANNISViewerCharLogger charSink(PluginSettings::read(PluginSettings::kLogXrvEvents));
CTANNISViewerWCharLogger wcharSink(PluginSettings::read(PluginSettings::kLogXrvEvents));

} // namespace

template <typename Char> bool HostLogSink<Char>::isLevelEnabled(void *, int level)
{
    return enabled && level >= thresholdOf(Application::getLogLevel());
}

template class HostLogSink<char>;
template class HostLogSink<wchar_t>;

void CTANNISViewerCharLogger::write(void *, int level, const char *text)
{
    logSdkMessage(QString::fromUtf8(text), level);
}

void CTANNISViewerWCharLogger::write(void *, int level, const wchar_t *text)
{
    logSdkMessage(QString::fromWCharArray(text), level);
}

CTANNISViewerCharLogger &charLogSink()
{
    return charSink;
}

CTANNISViewerWCharLogger &wcharLogSink()
{
    return wcharSink;
}

void setLogSinksEnabled(bool enabled)
{
    charSink.setEnabled(enabled);
    wcharSink.setEnabled(enabled);
}
