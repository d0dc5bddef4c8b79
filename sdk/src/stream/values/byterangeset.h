#pragma once

#include "io/bytesource.h"

#include <vector>

namespace xrv {

/// Bytes of a file, as ranges in file order that neither touch nor overlap.
class ByteRangeSet
{
public:
    ByteRangeSet() = default;
    explicit ByteRangeSet(const std::vector<ByteRange> &ranges)
        : held(joinedRanges(ranges, 0))
    {
    }
    bool isEmpty() const { return held.empty(); }
    const std::vector<ByteRange> &ranges() const { return held; }
    std::uint64_t byteCount() const;

    void add(const ByteRange &range);
    void remove(const ByteRange &range);
    void remove(const ByteRangeSet &other);
    /// What is in both.
    ByteRangeSet intersected(const ByteRangeSet &other) const;
    /// What is in this and in \a range.
    std::vector<ByteRange> within(const ByteRange &range) const;

private:
    std::vector<ByteRange> held;
};

} // namespace xrv
