#include "hostprocess.h"

#ifdef Q_OS_WIN
#include <windows.h>

#include <array>
#else
#include <QCoreApplication>
#endif

namespace HostProcess {

#ifdef Q_OS_WIN

QString executableFileName()
{
    std::array<wchar_t, 8192> name{};
    const DWORD length = GetModuleFileNameW(GetModuleHandleW(nullptr), name.data(), DWORD(name.size()));
    return QString::fromWCharArray(name.data(), int(length));
}

bool isModuleLoaded(const QString &name)
{
    return GetModuleHandleW(reinterpret_cast<const wchar_t *>(name.utf16())) != nullptr;
}

#else

QString executableFileName()
{
    return QCoreApplication::applicationFilePath();
}

bool isModuleLoaded(const QString &)
{
    return false;
}

#endif

} // namespace HostProcess
