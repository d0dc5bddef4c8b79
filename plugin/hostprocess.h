#pragma once

#include <QString>

/// What the operating system tells of the process that the plug-in was loaded into.
namespace HostProcess {

/// Full file name of the host's executable, with the platform's own separators.
QString executableFileName();

/// Whether a module (executable or shared library) of this file name, without its folder and in any case, is loaded.
/// Never on platforms that do not tell.
bool isModuleLoaded(const QString &name);

} // namespace HostProcess
