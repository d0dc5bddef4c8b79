#include "localfile.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace xrv {

using PLK::CError;

namespace {

CError errorOfErrno(const std::string &name, int number)
{
    switch (number) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
        return {PLK_ERR_NOT_FOUND, "The file \"" + name + "\" does not exist."};
    case EACCES:
    case EPERM:
        return {PLK_ERR_NO_ACCESS, "There is no permission to read the file \"" + name + "\"."};
    case ENXIO: // a pipe or socket without anybody at its other end
        return {PLK_ERR_NO_ACCESS, "\"" + name + "\" is not a regular file."};
    case ESTALE: // removed on the file server
        return {PLK_ERR_FILE_CHANGED, "The file \"" + name + "\" vanished while it was open."};
    default:
        return {PLK_ERR_READ, "The file \"" + name + "\" cannot be read: " +
                                  std::error_code(number, std::generic_category()).message() + "."};
    }
}

std::int64_t changeTime(const struct stat &status)
{
#if defined(__APPLE__)
    const timespec &time = status.st_mtimespec;
#else
    const timespec &time = status.st_mtim;
#endif
    return static_cast<std::int64_t>(time.tv_sec) * 1000000000 + time.tv_nsec;
}

} // namespace

struct LocalFile::Handle
{
    explicit Handle(int opened)
        : descriptor(opened)
    {
    }
    ~Handle() { ::close(descriptor); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    static Identity identityOf(const struct stat &status)
    {
        return {static_cast<std::uint64_t>(status.st_size), changeTime(status),
                static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
    }

    int descriptor;
};

LocalFile::LocalFile(std::string openedName, std::unique_ptr<Handle> openedHandle)
    : name(std::move(openedName))
    , handle(std::move(openedHandle))
{
}

LocalFile::~LocalFile() = default;

CError LocalFile::open(const std::string &name, std::unique_ptr<LocalFile> *file)
{
    // Non-blocking: opening a pipe would wait for somebody to write to it.
    const int descriptor = ::open(name.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        return errorOfErrno(name, errno);
    auto handle = std::make_unique<Handle>(descriptor);

    struct stat status
    {
    };
    if (::fstat(descriptor, &status) != 0)
        return errorOfErrno(name, errno);
    if (S_ISDIR(status.st_mode))
        return {PLK_ERR_NO_ACCESS, "\"" + name + "\" is a folder, not a file."};
    if (!S_ISREG(status.st_mode))
        return {PLK_ERR_NO_ACCESS, "\"" + name + "\" is not a regular file."};

    file->reset(new LocalFile(name, std::move(handle)));
    (*file)->identity = Handle::identityOf(status);
    return {};
}

bool LocalFile::exists(const std::string &name)
{
    struct stat status
    {
    };
    return ::stat(name.c_str(), &status) == 0 && !S_ISDIR(status.st_mode);
}

CError LocalFile::readAt(std::uint64_t offset, std::uint8_t *buffer, std::size_t length, std::size_t *count) const
{
    constexpr std::size_t kMaxRead = std::size_t(1) << 30; // systems take less than 2 GiB in one call
    *count = 0;
    while (*count < length) {
        const ssize_t got = ::pread(handle->descriptor, buffer + *count, std::min(length - *count, kMaxRead),
                                    static_cast<off_t>(offset + *count));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return errorOfErrno(name, errno);
        if (got == 0)
            break;
        *count += static_cast<std::size_t>(got);
    }
    return {};
}

bool LocalFile::isUnchanged() const
{
    struct stat status
    {
    };
    return ::fstat(handle->descriptor, &status) == 0 && Handle::identityOf(status) == identity;
}

} // namespace xrv
