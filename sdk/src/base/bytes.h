#pragma once

#include <cstdint>
#include <vector>

namespace xrv {

using Bytes = std::vector<std::uint8_t>;

/// Bytes [offset, offset + length) of a source.
struct ByteRange
{
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    std::uint64_t end() const { return offset + length; }
};

} // namespace xrv
