#include "tilesplitter.h"

#include "base/cancelflag.h"
#include "codestream/packetlengths.h"
#include "codestream/packetwalk.h"
#include "io/memorysource.h"

#include <algorithm>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::size_t kSotSegment = 12;
constexpr std::size_t kEnd = 2; ///< EOC marker

CError unexpected()
{
    return {PLK_ERR_DECODE, "The encoder wrote something that is no tile."};
}

/// One codestream of one tile.
class Splitter
{
public:
    explicit Splitter(Bytes codestream)
        : bytes(std::move(codestream))
        , source(bytes)
    {
    }

    CError run(EncodedTile *tile)
    {
        if (CError error = readMainHeader(source, {0, bytes.size()}, &header))
            return error;
        tile->capabilities = header.capabilities;
        tile->segments = header.segments;
        rect = IntRect{header.x0, header.y0, header.x1, header.y1};
        if (CError error = readTileHeader())
            return error;
        const PacketNumbering numbering(header, header.style, rect);
        if (lengths.empty())
            if (CError error = walk(numbering))
                return error;
        return lengths.size() == numbering.count() ? split(numbering, tile) : unexpected();
    }

private:
    CError readTileHeader()
    {
        position = static_cast<std::size_t>(header.length) + kSotSegment;
        std::vector<MarkerSegment> segments;
        bool isIncomplete = false;
        if (position > bytes.size() || !readSegments(bytes, &position, {Marker::kSOD}, &segments, &isIncomplete))
            return unexpected();
        position += 2;
        lengths = packetLengths(std::move(segments));
        return position + kEnd <= bytes.size() ? CError() : unexpected();
    }

    CError walk(const PacketNumbering &numbering)
    {
        const std::vector<ByteRange> data{{position, bytes.size() - kEnd - position}};
        PacketWalk walked;
        if (CError error = walkPackets(source, {header, header.style, rect, numbering, data, data},
                                       header.style.maxDecompositionLevels(), CancelFlag(), &walked))
            return error;
        if (walked.isBroken || !walked.isFinished)
            return unexpected();
        const CancelFlag never;
        PacketSequence sequence(header, header.style, rect, numbering, never);
        for (PacketName p; sequence.next(&p);)
            lengths.push_back(
                walked.places.of(numbering.number(p.component, p.resolution, p.precinct, p.layer)).length);
        return {};
    }

    CError split(const PacketNumbering &numbering, EncodedTile *tile)
    {
        auto next = lengths.begin();
        for (int resolution = 0; resolution <= header.style.maxDecompositionLevels(); ++resolution) {
            std::int64_t packets = 0;
            for (std::size_t c = 0; c < header.components.size(); ++c)
                packets += numbering.grid(static_cast<int>(c), resolution).count() * numbering.layers();
            EncodedTile::Part part;
            part.lengths.assign(next, next + packets);
            next += packets;
            std::uint64_t total = 0;
            for (const std::uint32_t length : part.lengths)
                total += length;
            if (total > bytes.size() - position)
                return unexpected();
            const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(position);
            part.packets.assign(begin, begin + static_cast<std::ptrdiff_t>(total));
            position += static_cast<std::size_t>(total);
            tile->parts.push_back(std::move(part));
        }
        return position + kEnd == bytes.size() ? CError() : unexpected();
    }

    const Bytes bytes;
    MemorySource source;
    MainHeader header;
    IntRect rect;
    std::size_t position = 0; ///< of the packets
    std::vector<std::uint32_t> lengths;
};

} // namespace

CError splitTile(Bytes codestream, EncodedTile *tile)
{
    return Splitter(std::move(codestream)).run(tile);
}

} // namespace xrv
