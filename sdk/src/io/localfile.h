#pragma once

#include <xrv60/plkerror.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace xrv {

/// A regular file of this computer, open for reading at any position. Any thread may read, several at once.
class LocalFile
{
public:
    /// \a name in UTF-8. PLK_ERR_NOT_FOUND, PLK_ERR_NO_ACCESS (also for folders, pipes and devices, none of which can
    /// make this wait) or PLK_ERR_READ.
    static PLK::CError open(const std::string &name, std::unique_ptr<LocalFile> *file);
    ~LocalFile();
    LocalFile(const LocalFile &) = delete;
    LocalFile &operator=(const LocalFile &) = delete;

    /// Something of this name that is no folder.
    static bool exists(const std::string &name);

    /// In bytes, when it was opened.
    std::uint64_t size() const { return identity.size; }
    /// Tells this version of the file from others: size, time of change and serial number.
    std::string version() const
    {
        return std::to_string(identity.size) + '-' + std::to_string(identity.changed) + '-' +
               std::to_string(identity.device) + '-' + std::to_string(identity.serial);
    }
    /// Reads up to \a length bytes at \a offset; fewer only at the file's end. \a count is how many came.
    PLK::CError readAt(std::uint64_t offset, std::uint8_t *buffer, std::size_t length, std::size_t *count) const;
    /// Size, time of change and serial number are those of the moment when the file was opened.
    bool isUnchanged() const;

private:
    struct Identity
    {
        std::uint64_t size = 0;
        std::int64_t changed = 0; ///< in the system's finest unit
        std::uint64_t device = 0, serial = 0;
        bool operator==(const Identity &other) const
        {
            return size == other.size && changed == other.changed && device == other.device && serial == other.serial;
        }
    };
    struct Handle;
    LocalFile(std::string openedName, std::unique_ptr<Handle> openedHandle);

    std::string name;
    std::unique_ptr<Handle> handle;
    Identity identity;
};

} // namespace xrv
