#include "diskfile.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace xrv {

namespace {

constexpr int kLockTries = 100;
constexpr auto kLockPause = std::chrono::milliseconds(3);

} // namespace

struct DiskFile::Handle
{
    explicit Handle(int opened)
        : descriptor(opened)
    {
    }
    ~Handle() { ::close(descriptor); }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;
    const int descriptor;
};

DiskFile::DiskFile(std::unique_ptr<Handle> openedHandle)
    : handle(std::move(openedHandle))
{
}

DiskFile::~DiskFile() = default;

std::unique_ptr<DiskFile> DiskFile::open(const std::string &path, bool create)
{
    // The folder may be one that everybody writes to: no links, no pipes, nobody else's files.
    const int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | (create ? O_CREAT : 0);
    const int descriptor = ::open(path.c_str(), flags, S_IRUSR | S_IWUSR);
    if (descriptor < 0)
        return nullptr;
    auto handle = std::make_unique<Handle>(descriptor);
    struct stat status
    {
    };
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        return nullptr;
    return std::unique_ptr<DiskFile>(new DiskFile(std::move(handle)));
}

std::uint64_t DiskFile::size() const
{
    struct stat status
    {
    };
    return ::fstat(handle->descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
}

std::size_t DiskFile::readAt(std::uint64_t offset, void *buffer, std::size_t length) const
{
    std::size_t done = 0;
    while (done < length) {
        const ssize_t got = ::pread(handle->descriptor, static_cast<char *>(buffer) + done, length - done,
                                    static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    return done;
}

bool DiskFile::writeAt(std::uint64_t offset, const void *data, std::size_t length)
{
    for (std::size_t done = 0; done < length;) {
        const ssize_t put = ::pwrite(handle->descriptor, static_cast<const char *>(data) + done, length - done,
                                     static_cast<off_t>(offset + done));
        if (put < 0 && errno == EINTR)
            continue;
        if (put <= 0)
            return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

bool DiskFile::truncate(std::uint64_t length)
{
    return ::ftruncate(handle->descriptor, static_cast<off_t>(length)) == 0;
}

bool DiskFile::isLinked() const
{
    struct stat status
    {
    };
    return ::fstat(handle->descriptor, &status) == 0 && status.st_nlink > 0;
}

bool DiskFile::lock()
{
    for (int i = 0; i < kLockTries; ++i) {
        if (::flock(handle->descriptor, LOCK_EX | LOCK_NB) == 0)
            return true;
        if (errno != EWOULDBLOCK && errno != EINTR)
            return false;
        std::this_thread::sleep_for(kLockPause);
    }
    return false;
}

void DiskFile::unlock()
{
    ::flock(handle->descriptor, LOCK_UN);
}

} // namespace xrv
