#include "bytesathand.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

/// Reads that lie closer than this are made in one.
constexpr std::uint64_t kJoinGap = 2048;

} // namespace

CError BytesAtHand::read(ByteSource &source, std::vector<ByteRange> ranges, const CancelFlag &cancel)
{
    ranges = joinedRanges(std::move(ranges), kJoinGap);
    std::vector<Bytes> bytes;
    if (CError error = source.read(ranges, cancel, &bytes))
        return error;
    chunks.clear();
    for (std::size_t i = 0; i < ranges.size(); ++i)
        chunks.push_back({ranges[i], std::move(bytes[i])});
    return {};
}

const std::uint8_t *BytesAtHand::find(std::uint64_t offset, std::uint64_t length) const
{
    auto chunk = std::upper_bound(chunks.begin(), chunks.end(), offset,
                                  [](std::uint64_t at, const Chunk &c) { return at < c.range.offset; });
    if (chunk == chunks.begin())
        return nullptr;
    --chunk;
    return offset + length <= chunk->range.end() ? chunk->bytes.data() + (offset - chunk->range.offset) : nullptr;
}

} // namespace xrv
