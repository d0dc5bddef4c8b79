#include "logger.h"

#include "logsink.h"

#include "base/utf8.h"

namespace xrv {

namespace {

template <typename Char> bool sinkWants(int level)
{
    bool wants = false;
    LogSink<Char> &sink = LogSink<Char>::instance();
    if (sink.isRegistered())
        sink.call([&](PLK::ILogger<Char> *logger, void *context) { wants = logger->isLevelEnabled(context, level); });
    return wants;
}

/// False without a sink of this kind.
template <typename Char> bool write(int level, const Char *text)
{
    LogSink<Char> &sink = LogSink<Char>::instance();
    return sink.isRegistered() && sink.call([&](PLK::ILogger<Char> *logger, void *context) {
        if (logger->isLevelEnabled(context, level))
            logger->write(context, level, text);
    });
}

} // namespace

bool logEnabled(int level)
{
    return sinkWants<char>(level) || sinkWants<wchar_t>(level);
}

void log(int level, const std::string &text)
{
    if (!write(level, text.c_str()) && LogSink<wchar_t>::instance().isRegistered())
        write(level, wideFromUtf8(text).c_str());
}

void log(int level, const std::wstring &text)
{
    if (!write(level, text.c_str()) && LogSink<char>::instance().isRegistered())
        write(level, utf8FromWide(text).c_str());
}

} // namespace xrv
