#pragma once

#include "io/bytesource.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Bytes of a source that have been read, to be found by their place.
class BytesAtHand
{
public:
    /// Reads \a ranges, with what lies between close ones, in the place of what was there.
    PLK::CError read(ByteSource &source, std::vector<ByteRange> ranges, const CancelFlag &cancel);
    /// The \a length bytes from \a offset on; null when they are not all there.
    const std::uint8_t *find(std::uint64_t offset, std::uint64_t length) const;

private:
    struct Chunk
    {
        ByteRange range;
        Bytes bytes;
    };
    std::vector<Chunk> chunks; ///< sorted
};

} // namespace xrv
