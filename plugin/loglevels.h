#pragma once

#include <QDGui/application.h>

/// Whether the host's log, at its present level, takes a message of the SDK's \a level. Any thread.
bool isSdkLevelLogged(int level);

/// The host's level for a message of the SDK's \a level.
Korvane::Application::LogLevel toHostLevel(int level);

/// Writes a message of the SDK to the host's log. Any thread.
void logSdkMessage(const QString &text, int level);
