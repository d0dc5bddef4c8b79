#pragma once

#include "plkexport.h"

/// Levels of the SDK's messages, and what each carries.
enum PLKLogLevel : int {
    PLK_LOG_TRACE = 10000,   ///< ranges read, views decoded with their times, faults met again
    PLK_LOG_DEBUG = 20000,   ///< times of statistics, folders in use
    PLK_LOG_INFO = 30000,    ///< start and stop, files opened and closed, settings that were adjusted
    PLK_LOG_WARNING = 40000, ///< damage that a file is shown in spite of, each kind once per open file
    PLK_LOG_ERROR = 50000,   ///< files that cannot be opened, views and statistics that fail, each kind once
    PLK_LOG_FATAL = 60000,   ///< memory ran out
};

namespace PLK {

/// What a log sink of any text type is.
class PLK_EXPORT ILoggerBase
{
public:
    virtual ~ILoggerBase();
};

/// A log sink. May be called from any thread, also from several at once.
template <typename Char> class ILogger : public virtual ILoggerBase
{
public:
    /// A thread begins to log, its first message follows. \a context is opaque and stands for the thread in all calls.
    virtual void attach(void *context) = 0;
    /// That thread ends. Not called for threads that outlive the sink's registration.
    virtual void detach(void *context) = 0;
    /// Asked before every message.
    virtual bool isLevelEnabled(void *context, int level) = 0;
    /// \a text is UTF-8 in narrow sinks, zero-terminated, and valid during the call only.
    virtual void write(void *context, int level, const Char *text) = 0;
};

/// Where the SDK's messages go: to the narrow sink, and to the wide one those that name a wide text (file names).
class PLK_EXPORT CLog
{
public:
    /// Installs \a logger, not owned, in place of the last one; null removes it. When this returns, the last sink is in
    /// no call any more, but for calls of this very thread: a sink may remove itself. No lock is held while a sink
    /// runs; it may log and call back into the SDK.
    static void RegisterLogger(ILogger<char> *logger);
    static void RegisterLogger(ILogger<wchar_t> *logger);
};

} // namespace PLK
