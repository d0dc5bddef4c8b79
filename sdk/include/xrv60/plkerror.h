#pragma once

#include "plkexport.h"

#include <string>

/// Codes of CError. The numbers are part of the interface.
enum PLKErrorCode : int {
    PLK_SUCCESS = 0,
    PLK_ERR_NOT_FOUND = 1,         ///< no such file
    PLK_ERR_NO_ACCESS = 2,         ///< not permitted, or not a regular file
    PLK_ERR_READ = 3,              ///< the operating system failed to read
    PLK_ERR_UNKNOWN_FORMAT = 4,    ///< not an XRV or JPEG 2000 file
    PLK_ERR_MALFORMED = 5,         ///< the file contradicts its format
    PLK_ERR_TRUNCATED = 6,         ///< the file ends too early
    PLK_ERR_UNSUPPORTED = 7,       ///< valid, but beyond what this library does
    PLK_ERR_OUT_OF_MEMORY = 8,     ///< would need more memory than there is, or than is allowed
    PLK_ERR_FILE_CHANGED = 9,      ///< the file changed or vanished while it was open
    PLK_ERR_INVALID_ARGUMENT = 10, ///< the caller's fault
    PLK_ERR_NOT_OPEN = 11,         ///< no file is open
    PLK_ERR_NO_VIEW = 12,          ///< no view has been set
    PLK_ERR_NOT_AVAILABLE = 13,    ///< the file does not carry what was asked for
    PLK_ERR_DECODE = 14,           ///< the codestream cannot be decoded
    PLK_ERR_CANCELLED = 15,        ///< cancelled by a newer view, a cancel or a close; no failure
    PLK_ERR_PROTOCOL = 16,         ///< an address of a protocol that is not served
    PLK_ERR_UNREACHABLE = 17,      ///< the image server cannot be reached, or is out of service
    PLK_ERR_SERVER = 18,           ///< the image server answers against the rules of the web
    PLK_ERR_TOO_LARGE = 19,        ///< the server gives the file as a whole only, and it is larger than the cache
    PLK_ERR_UNTRUSTED = 20,        ///< the certificate of the image server is not trusted
    PLK_ERR_CONNECTION_LOST = 76,  ///< the connection to the image server is lost
};

namespace PLK {

/// Result of an operation: a code to branch on and a sentence for a person. A plain value, cheap on success.
class PLK_EXPORT CError
{
public:
    CError() = default;
    /// \a message is a whole sentence in UTF-8.
    CError(int code, std::string message);

    int GetErrorNumber() const { return code; }
    /// UTF-8; empty on success. Valid as long as this object.
    const char *GetErrorMessage() const { return message.c_str(); }
    bool IsSuccess() const { return code == PLK_SUCCESS; }
    explicit operator bool() const { return code != PLK_SUCCESS; }

private:
    int code = PLK_SUCCESS;
    std::string message;
};

} // namespace PLK
