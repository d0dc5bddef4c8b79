#pragma once

#include "io/bytesource.h"

#include <xrv60/plkerror.h>

#include <cstdio>
#include <string>

namespace xrv {

/// A file that comes into being as a whole or not at all: it is written under a temporary name in the folder of its
/// final one, renamed by commit(), and removed by the destructor where that did not happen.
class OutputFile
{
public:
    OutputFile() = default;
    ~OutputFile();
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;

    /// \a path (UTF-8) is the final name. Its folder must exist.
    PLK::CError open(const std::string &path);
    /// Appends.
    PLK::CError write(const std::uint8_t *bytes, std::size_t count);
    PLK::CError write(const Bytes &bytes) { return write(bytes.data(), bytes.size()); }
    /// Bytes that were written before. Writing goes on at the end.
    PLK::CError readBack(ByteRange range, Bytes *bytes);
    std::uint64_t size() const { return length; }
    /// Closes the file and gives it its final name, in place of a file that bears it.
    PLK::CError commit();

private:
    PLK::CError failure(const char *what) const;

    std::string finalPath, temporaryPath;
    std::FILE *file = nullptr;
    std::uint64_t length = 0;
    bool isAtEnd = true;
};

} // namespace xrv
