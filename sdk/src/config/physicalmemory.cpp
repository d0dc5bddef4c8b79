#include "configuration.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace xrv {

std::uint64_t physicalMemory()
{
    constexpr std::uint64_t kUnknown = std::uint64_t(1) << 30;
#if defined(_WIN32)
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : kUnknown;
#else
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGESIZE);
    return pages > 0 && pageSize > 0 ? std::uint64_t(pages) * std::uint64_t(pageSize) : kUnknown;
#endif
}

} // namespace xrv
