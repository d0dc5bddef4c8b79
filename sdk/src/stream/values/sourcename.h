#pragma once

#include "streamaddress.h"

#include <xrv60/plkerror.h>

#include <string>

namespace xrv {

/// What a caller's name of an image stands for: a file of this computer or an address. Taken apart once, when it is
/// made; what opens the image, names it to others and shows it then goes by the same reading. Immutable.
class SourceName
{
public:
    /// \a given in UTF-8, as the caller wrote it; a web address ("http://", "https://") stands for the stream that is
    /// read from there. Looks into the file system (see localPath()).
    explicit SourceName(const std::string &given);

    /// Why nothing can be opened by this name: PLK_ERR_PROTOCOL for addresses that are not readable or of a protocol
    /// that is not served. Success says nothing about whether there is such a file.
    const PLK::CError &fault() const { return nameFault; }
    /// The name is a stream address, readable where there is no fault().
    bool isStream() const { return isOfStream; }
    /// Of streams without a fault, with user and password as they were given.
    const StreamAddress &address() const { return streamAddress; }
    /// Of files: the path in the file system. Empty for streams.
    const std::string &path() const { return filePath; }

    /// As it may be handed out and kept: as it was given, addresses without user and password.
    const std::string &printable() const { return printableName; }
    /// As it may be shown and logged: addresses, whatever their scheme, without user, password and what follows "?",
    /// anything else unchanged.
    const std::string &shown() const { return shownName; }

private:
    void readStream(const std::string &given);
    PLK::CError schemeFault(const std::string &given) const;

    bool isOfStream = false;
    PLK::CError nameFault;
    StreamAddress streamAddress;
    std::string filePath, printableName, shownName;
};

} // namespace xrv
