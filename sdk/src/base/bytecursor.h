#pragma once

#include <cstddef>
#include <cstdint>

namespace xrv {

/// Reads big-endian numbers from a buffer that it does not own and never reads past its end: a read beyond it gives 0
/// and makes ok() false for good.
class ByteCursor
{
public:
    ByteCursor(const std::uint8_t *bytes, std::size_t size)
        : data(bytes)
        , length(size)
    {
    }

    bool ok() const { return good; }
    bool atEnd() const { return position == length; }
    std::size_t pos() const { return position; }
    std::size_t remaining() const { return length - position; }
    const std::uint8_t *here() const { return data + position; }

    std::uint8_t u8() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t u16() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t u32() { return static_cast<std::uint32_t>(number(4)); }
    std::uint64_t u64() { return number(8); }
    void skip(std::size_t count)
    {
        if (take(count))
            position += count;
    }

private:
    bool take(std::size_t count)
    {
        if (good && count <= length - position)
            return true;
        good = false;
        return false;
    }
    std::uint64_t number(std::size_t count)
    {
        if (!take(count))
            return 0;
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | data[position++];
        return value;
    }

    const std::uint8_t *data;
    std::size_t length;
    std::size_t position = 0;
    bool good = true;
};

} // namespace xrv
