#pragma once

#include "bytecursor.h"
#include "bytes.h"

#include <array>

namespace xrv {

/// Appends \a value seven bits a byte, highest first; the highest bit of a byte says that more follow.
inline void appendVarint(Bytes *bytes, std::uint64_t value)
{
    std::array<std::uint8_t, 10> groups{};
    std::size_t count = 0;
    do {
        groups[count++] = static_cast<std::uint8_t>(value & 0x7F);
        value >>= 7;
    } while (value > 0);
    while (count > 1)
        bytes->push_back(static_cast<std::uint8_t>(groups[--count] | 0x80));
    bytes->push_back(groups[0]);
}

/// Reads such a number. False where the bytes end, or it has more than 64 bits; \a cursor is then of no more use.
inline bool readVarint(ByteCursor *cursor, std::uint64_t *value)
{
    *value = 0;
    for (;;) {
        const std::uint8_t byte = cursor->u8();
        if (!cursor->ok() || *value >> 57 != 0)
            return false;
        *value = *value << 7 | (byte & 0x7F);
        if (!(byte & 0x80))
            return true;
    }
}

} // namespace xrv
