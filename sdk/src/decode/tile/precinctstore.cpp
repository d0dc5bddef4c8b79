#include "precinctstore.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

/// Indexes kept per file, in bytes.
constexpr std::size_t kPrecinctBudget = 32u << 20;
/// Packets up to this size are read whole; of longer ones first the header, then the code-blocks that are wanted.
constexpr std::uint64_t kWholePacket = std::uint64_t(256) * 1024;
// When fewer than one in so many of a precinct's code-blocks are wanted, packets are not fetched whole; their headers
// take about so much to begin with.
constexpr std::size_t kFewCodeBlocks = 4;
constexpr std::uint64_t kShortHeader = 512, kHeaderPerCodeBlock = 6;
/// A header that reaches further than what was read is read again with so many times more.
constexpr std::uint64_t kReadGrowth = 8;

/// Where the packets of the precinct lie, by layer.
std::vector<ByteRange> packetsOf(const WantedPrecinct &precinct)
{
    const TileIndex &index = *precinct.request->tile.index;
    const PrecinctKey &key = precinct.key;
    std::vector<ByteRange> packets;
    for (int layer = 0; layer < key.layers; ++layer) {
        const PacketPlace place =
            index.place(index.packets().number(key.component, key.resolution, key.precinct, layer));
        packets.push_back({place.offset, place.length});
    }
    return packets;
}

/// No more than \a limit bytes of each range. \a isAll tells whether that is all of them.
std::vector<ByteRange> beginningsOf(std::vector<ByteRange> ranges, std::uint64_t limit, bool *isAll)
{
    *isAll = true;
    for (ByteRange &range : ranges) {
        *isAll &= range.length <= limit;
        range.length = std::min(range.length, limit);
    }
    return ranges;
}

/// What a damaged packet header has told is forgotten.
void dropFromLayer(PrecinctIndex &index, int layer)
{
    for (BandState &band : index.bands)
        for (CodeBlockState &codeBlock : band.included)
            while (!codeBlock.pieces.empty() && codeBlock.pieces.back().layer >= layer)
                codeBlock.pieces.pop_back();
}

} // namespace

std::size_t PrecinctIndex::memoryUse() const
{
    std::size_t sum = sizeof(*this);
    for (const BandState &band : bands) {
        sum += band.memoryUse();
        for (const CodeBlockState &codeBlock : band.included)
            sum += codeBlock.pieces.capacity() * sizeof(CodeBlockPiece) + 16;
    }
    return sum;
}

PrecinctStore::PrecinctStore(std::shared_ptr<ByteSource> source, const MainHeader &header)
    : source(std::move(source))
    , header(header)
    , precincts(kPrecinctBudget)
{
}

/// Bytes of each packet that are read at first: from a distant source no more than the headers when few of the
/// precinct's code-blocks are wanted, and nothing where the headers are packed elsewhere.
std::uint64_t PrecinctStore::firstRead(const WantedPrecinct &precinct) const
{
    if (!source->isRemote())
        return kWholePacket;
    const TileIndex &index = *precinct.request->tile.index;
    const PrecinctKey &key = precinct.key;
    std::uint64_t count = 0;
    for (const BandGrid &band : bandGrids(
             componentRect(index.rect(), header.components[key.component]), index.style().components[key.component],
             index.packets().grid(key.component, key.resolution), key.resolution, key.precinct))
        count += band.count();
    if (precinct.codeBlocks.size() * kFewCodeBlocks >= count)
        return kWholePacket;
    return index.hasPackedHeaders() ? 0 : kShortHeader + count * kHeaderPerCodeBlock;
}

std::vector<ByteRange> PrecinctStore::firstRanges(const WantedPrecinct &precinct) const
{
    bool isAll = false;
    return beginningsOf(packetsOf(precinct), firstRead(precinct), &isAll);
}

CError PrecinctStore::load(WantedPrecinct *precinct, const CancelFlag &cancel)
{
    if (precinct->index)
        return {};
    const std::vector<ByteRange> packets = packetsOf(*precinct);
    for (std::uint64_t limit = firstRead(*precinct);; limit *= kReadGrowth) {
        bool isAll = false;
        const std::vector<ByteRange> beginnings = beginningsOf(packets, limit, &isAll);
        if (CError error = precinct->bytes.read(*source, beginnings, cancel))
            return error;
        auto parsed = std::make_shared<PrecinctIndex>();
        const Precinct::Outcome outcome = parse(*precinct, beginnings, cancel, parsed.get());
        if (cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        const bool hasHeaders = isAll || precinct->request->tile.index->hasPackedHeaders();
        if (outcome == Precinct::Outcome::NeedsMore && !hasHeaders)
            continue;
        precinct->isDamaged = outcome != Precinct::Outcome::Ok;
        precinct->index = parsed;
        precincts.insert(precinct->key, parsed);
        return {};
    }
}

/// The header of the packet of \a layer with what follows it; \a beginning is what was read of the packet.
std::pair<const std::uint8_t *, std::size_t> PrecinctStore::headerOf(const WantedPrecinct &wanted,
                                                                     const ByteRange &beginning, int layer)
{
    const TileIndex &tile = *wanted.request->tile.index;
    const PrecinctKey &key = wanted.key;
    if (tile.hasPackedHeaders())
        return tile.packedHeader(tile.packets().number(key.component, key.resolution, key.precinct, layer));
    return {wanted.bytes.find(beginning.offset, beginning.length), static_cast<std::size_t>(beginning.length)};
}

Precinct::Outcome PrecinctStore::parse(const WantedPrecinct &wanted, const std::vector<ByteRange> &beginnings,
                                       const CancelFlag &cancel, PrecinctIndex *index) const
{
    const TileIndex &tile = *wanted.request->tile.index;
    const PrecinctKey &key = wanted.key;
    Precinct precinct(componentRect(tile.rect(), header.components[key.component]),
                      tile.style().components[key.component], tile.packets().grid(key.component, key.resolution),
                      key.resolution, key.precinct, tile.style().usesEph());
    Precinct::Outcome outcome = Precinct::Outcome::Ok;
    int soundLayers = 0;
    for (const ByteRange &packet : beginnings) {
        const auto [bytes, size] = headerOf(wanted, packet, soundLayers);
        if (size == 0)
            break; // cut off; the layers before it stand
        std::size_t headerLength = 0;
        std::uint64_t bodyLength = 0;
        outcome = precinct.parse(bytes, size, soundLayers, cancel, &headerLength, &bodyLength);
        if (outcome != Precinct::Outcome::Ok)
            break;
        precinct.placeLast(tile.hasPackedHeaders() ? packet.offset - headerLength : packet.offset);
        ++soundLayers;
    }
    index->bands = precinct.takeBands();
    if (outcome != Precinct::Outcome::Ok)
        dropFromLayer(*index, soundLayers);
    return outcome;
}

} // namespace xrv
