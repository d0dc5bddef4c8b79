#pragma once

#include "plkerror.h"
#include "plkexport.h"

#include <cstdint>

namespace PLK {

/// The bytes of an open file, wherever they come from.
class PLK_EXPORT CIOStream
{
public:
    virtual ~CIOStream();
    /// Yes when the bytes come over a network.
    virtual bool IsRemote() const = 0;
    /// Size in bytes.
    virtual std::uint64_t GetSize() const = 0;
    /// Moves the reading position to \a offset bytes from the start; false past the end.
    virtual bool Seek(std::uint64_t offset) = 0;
    /// Reads exactly \a length bytes to \a buffer and moves on; false when that is impossible.
    virtual bool Read(void *buffer, std::uint64_t length) = 0;
};

} // namespace PLK
