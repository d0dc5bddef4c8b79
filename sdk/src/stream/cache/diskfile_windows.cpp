#include "diskfile.h"

#include "base/utf8.h"

#include <chrono>
#include <thread>

#include <windows.h>

namespace xrv {

namespace {

constexpr int kLockTries = 100;
constexpr auto kLockPause = std::chrono::milliseconds(3);
constexpr DWORD kLockedByte = 0xFFFFFFFE; // far beyond the content, which others may read meanwhile

OVERLAPPED placeAt(std::uint64_t offset)
{
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return place;
}

} // namespace

struct DiskFile::Handle
{
    explicit Handle(HANDLE opened)
        : file(opened)
    {
    }
    ~Handle() { CloseHandle(file); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    const HANDLE file;
};

DiskFile::DiskFile(std::unique_ptr<Handle> openedHandle)
    : handle(std::move(openedHandle))
{
}

DiskFile::~DiskFile() = default;

std::unique_ptr<DiskFile> DiskFile::open(const std::string &path, bool create)
{
    const HANDLE file = CreateFileW(wideFromUtf8(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    create ? OPEN_ALWAYS : OPEN_EXISTING,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return nullptr;
    auto handle = std::make_unique<Handle>(file);
    BY_HANDLE_FILE_INFORMATION found;
    if (GetFileType(file) != FILE_TYPE_DISK || !GetFileInformationByHandle(file, &found) ||
        (found.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT)) != 0)
        return nullptr;
    return std::unique_ptr<DiskFile>(new DiskFile(std::move(handle)));
}

std::uint64_t DiskFile::size() const
{
    LARGE_INTEGER size;
    return GetFileSizeEx(handle->file, &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

std::size_t DiskFile::readAt(std::uint64_t offset, void *buffer, std::size_t length) const
{
    OVERLAPPED place = placeAt(offset);
    DWORD got = 0;
    return ReadFile(handle->file, buffer, static_cast<DWORD>(length), &got, &place) ? got : 0;
}

bool DiskFile::writeAt(std::uint64_t offset, const void *data, std::size_t length)
{
    OVERLAPPED place = placeAt(offset);
    DWORD put = 0;
    return WriteFile(handle->file, data, static_cast<DWORD>(length), &put, &place) && put == length;
}

bool DiskFile::truncate(std::uint64_t length)
{
    FILE_END_OF_FILE_INFO end;
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(length);
    return SetFileInformationByHandle(handle->file, FileEndOfFileInfo, &end, sizeof end) != 0;
}

bool DiskFile::isLinked() const
{
    FILE_STANDARD_INFO info;
    return GetFileInformationByHandleEx(handle->file, FileStandardInfo, &info, sizeof info) && !info.DeletePending;
}

bool DiskFile::lock()
{
    for (int i = 0; i < kLockTries; ++i) {
        OVERLAPPED place = placeAt(kLockedByte);
        if (LockFileEx(handle->file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place))
            return true;
        std::this_thread::sleep_for(kLockPause);
    }
    return false;
}

void DiskFile::unlock()
{
    OVERLAPPED place = placeAt(kLockedByte);
    UnlockFileEx(handle->file, 0, 1, 0, &place);
}

} // namespace xrv
