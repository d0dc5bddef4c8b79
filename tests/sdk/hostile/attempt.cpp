#include "attempt.h"

#include <xrv60/plkinit.h>

#include <QFile>

#include <algorithm>
#include <cstring>
#include <ctime>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#if defined(__GNUC__)
// Of the sanitizers' allocator (sanitizer/allocator_interface.h), absent without them.
extern "C" void __sanitizer_purge_allocator() __attribute__((weak));
#endif

namespace {

constexpr double kMaxSeconds = 2.0; // of processors: a busy machine is no fault of a file's
constexpr std::uint64_t kMaxBytes = std::uint64_t{600} << 20;
/// Sanitizers keep freed memory and shadow all of it, and check every access.
constexpr std::uint64_t kMaxBytesWatched = std::uint64_t{2} << 30;
constexpr double kWatchedFactor = 6.0;

std::uint64_t maxBytes()
{
    return timeFactor() > 1.0 ? kMaxBytesWatched : kMaxBytes;
}

/// Gives back what the allocator keeps of freed memory: earlier attempts are not to count.
void releaseFreedMemory()
{
#if defined(__GNUC__)
    if (__sanitizer_purge_allocator)
        __sanitizer_purge_allocator();
#endif
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

/// Makes the kernel forget the process's peak so far (proc(5), clear_refs).
void resetPeakMemory()
{
    releaseFreedMemory();
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (file.open(QIODevice::WriteOnly))
        file.write("5");
}

std::uint64_t peakMemory()
{
    QFile file(QStringLiteral("/proc/self/status"));
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toULongLong() * 1024;
    return 0;
}

void readLines(PLK::CView *view, Attempt *result)
{
    constexpr std::size_t kLineBytes = std::size_t{kPictureSide} * 4;
    result->picture.assign(kLineBytes * kPictureSide, 0);
    for (std::size_t y = 0; y < kPictureSide; ++y) {
        if (view->ReadLineBGRA(result->picture.data() + y * kLineBytes) == PLK_READ_SUCCESS)
            continue;
        result->picture.resize(y * kLineBytes);
        result->error = view->GetLastError();
        if (result->error.IsSuccess())
            result->error = PLK::CError(-1, "A line failed without an error.");
        return;
    }
}

void showAll(PLK::CView *view, Attempt *result)
{
    const PLKFileInfo *info = view->GetFileInfo();
    const int bands[] = {0};
    result->error = view->SetView(1, bands, kPictureSide, kPictureSide, info->fOriginX, info->fOriginY,
                                  info->fOriginX + info->fCellIncrementX * info->nSizeX,
                                  info->fOriginY + info->fCellIncrementY * info->nSizeY);
    if (result->error.IsSuccess())
        readLines(view, result);
}

template <typename Work> Attempt measured(Work work)
{
    Attempt result;
    resetPeakMemory();
    const std::clock_t begin = std::clock();
    work(&result);
    result.seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    result.peakBytes = peakMemory();
    return result;
}

bool isSentence(const char *text)
{
    const std::size_t length = std::strlen(text);
    return length > 10 && text[length - 1] == '.' && std::strchr(text, ' ') != nullptr;
}

} // namespace

double timeFactor()
{
#if defined(__GNUC__)
    if (__sanitizer_purge_allocator)
        return kWatchedFactor;
#endif
    return 1.0;
}

QByteArray Attempt::complaint() const
{
    if (seconds > kMaxSeconds * timeFactor())
        return "took " + QByteArray::number(seconds) + " s";
    if (peakBytes > maxBytes())
        return "took " + QByteArray::number(static_cast<qulonglong>(peakBytes >> 20)) + " MiB";
    if (isShown())
        return {};
    if (error.GetErrorNumber() <= PLK_SUCCESS || error.GetErrorNumber() == PLK_ERR_CANCELLED)
        return "no proper error: " + QByteArray::number(error.GetErrorNumber()) + ' ' + error.GetErrorMessage();
    if (!isSentence(error.GetErrorMessage()))
        return QByteArray("no sentence: '") + error.GetErrorMessage() + '\'';
    return {};
}

Attempt attempt(PLK::CView *view, const std::string &path, Damage damage)
{
    view->Close(true);
    return measured([&](Attempt *result) {
        auto &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
        config.SetResilientDecodingEnabled(damage == Damage::Resilient);
        result->error = view->Open(PLK::CString(path.c_str()), false, false);
        if (result->error.IsSuccess())
            showAll(view, result);
    });
}

Attempt attemptView(PLK::CView *view)
{
    return measured([&](Attempt *result) { showAll(view, result); });
}

Attempt attemptStatistics(PLK::CView *view)
{
    return measured([&](Attempt *result) {
        PLKFileStatistics *statistics = nullptr;
        result->error = view->GetClientStatistics(&statistics);
        PLKFreeStatistics(statistics);
    });
}
