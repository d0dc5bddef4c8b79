#include "hostprocess.h"

#ifdef Q_OS_WIN
#include <windows.h>

#include <array>
#else
#include <QCoreApplication>
#endif
#ifdef Q_OS_LINUX
#include <QFile>

#include <link.h>
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

#ifdef Q_OS_LINUX

namespace {

struct Search
{
    QString name;
    bool isFound;
};

int visitModule(dl_phdr_info *module, size_t, void *data)
{
    auto *search = static_cast<Search *>(data);
    const QString file = QFile::decodeName(module->dlpi_name);
    search->isFound = file.section(QLatin1Char('/'), -1).compare(search->name, Qt::CaseInsensitive) == 0;
    return search->isFound; // ends the visit
}

} // namespace

bool isModuleLoaded(const QString &name)
{
    Search search{name, false};
    // The first one is the executable, and goes without a name.
    return !name.isEmpty() && dl_iterate_phdr(visitModule, &search) != 0;
}

#else

bool isModuleLoaded(const QString &)
{
    return false;
}

#endif

#endif

} // namespace HostProcess
