#pragma once

#include <QString>

/// What the operating system tells of the process that the plug-in was loaded into.
namespace HostProcess {

/// Full file name of the host's executable, with the platform's own separators.
QString executableFileName();

/// Whether a module of this file name is loaded. Never on platforms other than Windows.
bool isModuleLoaded(const QString &name);

} // namespace HostProcess
