#include <xrv60/plklog.h>

#include "log/logsink.h"

namespace PLK {

ILoggerBase::~ILoggerBase() = default;

void CLog::RegisterLogger(ILogger<char> *logger)
{
    xrv::LogSink<char>::instance().replace(logger);
}

void CLog::RegisterLogger(ILogger<wchar_t> *logger)
{
    xrv::LogSink<wchar_t>::instance().replace(logger);
}

} // namespace PLK
