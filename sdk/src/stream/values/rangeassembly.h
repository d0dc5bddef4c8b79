#pragma once

#include "byterangeset.h"

namespace xrv {

/// Bytes of several ranges that come in any order and any pieces.
class RangeAssembly
{
public:
    /// Makes room in \a out, which is filled as pieces come.
    RangeAssembly(const std::vector<ByteRange> &ranges, std::vector<Bytes> *out);

    /// What did not come yet.
    const ByteRangeSet &lacking() const { return open; }
    /// Takes what is wanted of the \a length bytes at \a data, that stand at \a offset in the file.
    void add(std::uint64_t offset, const std::uint8_t *data, std::uint64_t length);

private:
    const std::vector<ByteRange> &ranges;
    std::vector<std::size_t> order; ///< of the ranges by offset
    std::uint64_t longest = 0;
    std::vector<Bytes> *out;
    ByteRangeSet open;
};

} // namespace xrv
