#pragma once

#include <string>

namespace xrv {

/// A sink wants messages of \a level (PLKLogLevel). Ask first where making the text costs something. Any thread.
bool logEnabled(int level);

/// Hands a message to the narrow sink, or where there is none to the wide one. \a text is UTF-8. Any thread; no lock is
/// held while a sink runs, and sinks may log and register themselves.
void log(int level, const std::string &text);

/// The same for texts that name a file: to the wide sink, or where there is none to the narrow one.
void log(int level, const std::wstring &text);

} // namespace xrv
