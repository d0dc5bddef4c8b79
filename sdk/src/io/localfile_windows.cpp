#include "localfile.h"

#include "base/utf8.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include <windows.h>

namespace xrv {

using PLK::CError;

namespace {

CError errorOfSystem(const std::string &name, DWORD number)
{
    switch (number) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return {PLK_ERR_NOT_FOUND, "The file \"" + name + "\" does not exist."};
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
        return {PLK_ERR_NO_ACCESS, "There is no permission to read the file \"" + name + "\"."};
    default:
        return {PLK_ERR_READ, "The file \"" + name + "\" cannot be read: " +
                                  std::error_code(static_cast<int>(number), std::system_category()).message() + "."};
    }
}

std::uint64_t joined(DWORD high, DWORD low)
{
    return static_cast<std::uint64_t>(high) << 32 | low;
}

} // namespace

struct LocalFile::Handle
{
    explicit Handle(HANDLE opened)
        : file(opened)
    {
    }
    ~Handle() { CloseHandle(file); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    bool readIdentity(Identity *identity) const
    {
        BY_HANDLE_FILE_INFORMATION found;
        if (!GetFileInformationByHandle(file, &found))
            return false;
        *identity = {joined(found.nFileSizeHigh, found.nFileSizeLow),
                     static_cast<std::int64_t>(
                         joined(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime)),
                     found.dwVolumeSerialNumber, joined(found.nFileIndexHigh, found.nFileIndexLow)};
        return true;
    }

    HANDLE file;
};

LocalFile::LocalFile(std::string openedName, std::unique_ptr<Handle> openedHandle)
    : name(std::move(openedName))
    , handle(std::move(openedHandle))
{
}

LocalFile::~LocalFile() = default;

CError LocalFile::open(const std::string &name, std::unique_ptr<LocalFile> *file)
{
    const std::wstring wide = wideFromUtf8(name);
    const DWORD attributes = GetFileAttributesW(wide.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return errorOfSystem(name, GetLastError());
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        return {PLK_ERR_NO_ACCESS, "\"" + name + "\" is a folder, not a file."};
    const HANDLE opened =
        CreateFileW(wide.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL | FILE_FLAG_RANDOM_ACCESS, nullptr);
    if (opened == INVALID_HANDLE_VALUE)
        return errorOfSystem(name, GetLastError());
    auto handle = std::make_unique<Handle>(opened);
    if (GetFileType(opened) != FILE_TYPE_DISK)
        return {PLK_ERR_NO_ACCESS, "\"" + name + "\" is not a regular file."};

    Identity identity;
    if (!handle->readIdentity(&identity))
        return errorOfSystem(name, GetLastError());
    file->reset(new LocalFile(name, std::move(handle)));
    (*file)->identity = identity;
    return {};
}

bool LocalFile::exists(const std::string &name)
{
    const DWORD attributes = GetFileAttributesW(wideFromUtf8(name).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

CError LocalFile::readAt(std::uint64_t offset, std::uint8_t *buffer, std::size_t length, std::size_t *count) const
{
    constexpr std::size_t kMaxRead = std::size_t(1) << 30;
    *count = 0;
    while (*count < length) {
        // A position of its own in every call, so that threads do not move each other's.
        OVERLAPPED place{};
        place.Offset = static_cast<DWORD>(offset + *count);
        place.OffsetHigh = static_cast<DWORD>((offset + *count) >> 32);
        DWORD got = 0;
        if (!ReadFile(handle->file, buffer + *count, static_cast<DWORD>(std::min(length - *count, kMaxRead)), &got,
                      &place)) {
            if (GetLastError() == ERROR_HANDLE_EOF)
                break;
            return errorOfSystem(name, GetLastError());
        }
        if (got == 0)
            break;
        *count += got;
    }
    return {};
}

bool LocalFile::isUnchanged() const
{
    Identity now;
    return handle->readIdentity(&now) && now == identity;
}

} // namespace xrv
