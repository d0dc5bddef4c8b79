#include "rasterreader.h"

#include "codestreamreader.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

/// Packet indexes are some bytes for each packet; far larger ones are none.
constexpr std::uint64_t kMaxIndexBytes = 64u << 20;
/// Bytes that a main header takes at most as a rule.
constexpr std::uint64_t kUsualHeader = std::uint64_t(16) * 1024;

CError readPacketIndex(ByteSource &source, ByteRange codestream, ByteRange place, MainHeader *header)
{
    constexpr std::uint64_t kEndMarker = 2;
    Bytes content;
    if (place.length == 0 || place.length > kMaxIndexBytes || codestream.length < header->length + kEndMarker)
        return {};
    if (CError error = source.read(place, &content))
        return error;
    header->packetIndex =
        PacketIndex::parse(content, header->tileCount(), codestream.length - header->length - kEndMarker);
    return {};
}

} // namespace

CError RasterReader::open(const std::shared_ptr<ByteSource> &source, ByteRange codestream,
                          std::unique_ptr<RasterReader> *reader, ByteRange packetIndex)
{
    auto header = std::make_unique<MainHeader>();
    // The index lies right before the codestream: a distant source fetches both at once.
    if (packetIndex.length > 0 && packetIndex.length <= kMaxIndexBytes)
        if (CError error =
                source->prefetch({packetIndex, {codestream.offset, std::min(kUsualHeader, codestream.length)}}, {}))
            return error;
    if (CError error = readMainHeader(*source, codestream, header.get()))
        return error;
    if (CError error = readPacketIndex(*source, codestream, packetIndex, header.get()))
        return error;
    auto made = std::make_unique<CodestreamReader>(source, codestream, std::move(header));
    if (made->info().width == 0 || made->info().height == 0)
        return {PLK_ERR_MALFORMED,
                "The image has no cells: its components are sampled more coarsely than it is large."};
    *reader = std::move(made);
    return {};
}

} // namespace xrv
