#pragma once

#include "bytes.h"

namespace xrv {

/// Appends big-endian numbers to a buffer.
class ByteWriter
{
public:
    explicit ByteWriter(Bytes *bytes)
        : bytes(bytes)
    {
    }
    void u8(std::uint32_t value) { bytes->push_back(static_cast<std::uint8_t>(value)); }
    void u16(std::uint32_t value)
    {
        u8(value >> 8);
        u8(value);
    }
    void u32(std::uint32_t value)
    {
        u16(value >> 16);
        u16(value);
    }
    void append(const std::uint8_t *data, std::size_t size) { bytes->insert(bytes->end(), data, data + size); }
    void append(const Bytes &data) { bytes->insert(bytes->end(), data.begin(), data.end()); }
    std::size_t position() const { return bytes->size(); }
    void patchU32(std::size_t at, std::uint32_t value)
    {
        for (int i = 0; i < 4; ++i)
            (*bytes)[at + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
    }

private:
    Bytes *bytes;
};

} // namespace xrv
