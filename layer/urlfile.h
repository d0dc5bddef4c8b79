#pragma once

#include <QString>

namespace Korvane {

/// What a ".url" file says: small text files with one "URL=address" line.
struct UrlFile
{
    enum class Status {
        Ok,          ///< \c address is the last one in the file; empty when there is none
        CannotOpen,  ///< the file cannot be read
        BadProtocol, ///< an address of a protocol that is not served
    };

    Status status = Status::Ok;
    QString address;
};

/// Reads \a fileName, no more than its first 256 KiB. Only lines that begin with "URL=" or "url=" count; an address
/// ends before the next "=".
UrlFile readUrlFile(const QString &fileName);

} // namespace Korvane
