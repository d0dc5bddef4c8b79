#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace xrv {

/// A file of the cache, open for reading and writing by several processes. Nothing here waits for long, and nothing
/// throws; what fails says false.
class DiskFile
{
public:
    /// \a path in UTF-8. Opens a regular file, or makes an empty one that only this user may read where there is none
    /// and \a create is set. Links are not followed. Null on failure.
    static std::unique_ptr<DiskFile> open(const std::string &path, bool create);
    ~DiskFile();
    DiskFile(const DiskFile &) = delete;
    DiskFile &operator=(const DiskFile &) = delete;

    std::uint64_t size() const;
    /// The bytes that there are, up to \a length; how many these were.
    std::size_t readAt(std::uint64_t offset, void *buffer, std::size_t length) const;
    bool writeAt(std::uint64_t offset, const void *data, std::size_t length);
    bool truncate(std::uint64_t length);
    /// The file still has its name: nobody removed it.
    bool isLinked() const;
    /// Holds off all other writers until unlock(); false when another one does not let go within a fraction of a
    /// second. A process that ends lets go.
    bool lock();
    void unlock();

private:
    struct Handle;
    explicit DiskFile(std::unique_ptr<Handle> openedHandle);
    std::unique_ptr<Handle> handle;
};

/// Holds a file's lock, if it could be had, until its own end.
class DiskFileLock
{
public:
    explicit DiskFileLock(DiskFile *lockedFile)
        : file(lockedFile)
        , held(lockedFile->lock())
    {
    }
    ~DiskFileLock()
    {
        if (held)
            file->unlock();
    }
    DiskFileLock(const DiskFileLock &) = delete;
    DiskFileLock &operator=(const DiskFileLock &) = delete;
    bool isHeld() const { return held; }

private:
    DiskFile *const file;
    const bool held;
};

} // namespace xrv
