#include <QDGui/system.h>

#ifdef Q_OS_WIN
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace Korvane::System {

namespace {

quint64 totalBytes()
{
#ifdef Q_OS_WIN
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof(status);
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
#else
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageBytes = sysconf(_SC_PAGESIZE);
    return pages > 0 && pageBytes > 0 ? static_cast<quint64>(pages) * static_cast<quint64>(pageBytes) : 0;
#endif
}

} // namespace

quint64 getTotalRAM()
{
    return totalBytes() >> 20;
}

} // namespace Korvane::System
