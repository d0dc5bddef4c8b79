#include "blockstore.h"

#include "parallel.h"

#include "decode/codeblock/blockdecoder.h"
#include "decode/codeblock/htblockdecoder.h"
#include "decode/transform/planeops.h"
#include "decode/transform/quantization.h"

#include <algorithm>
#include <mutex>

using PLK::CError;

namespace xrv {

namespace {

/// Parsed precincts kept per file, in bytes.
constexpr std::size_t kPrecinctBudget = 32u << 20;
/// Packets up to this size are read whole; of longer ones first the header, then the blocks that are wanted.
constexpr std::uint64_t kWholePacket = 256 * 1024;
/// Reads of one precinct or block that lie closer than this are made in one.
constexpr std::uint64_t kJoinGap = 2048;
// When fewer than one in so many of a precinct's blocks are wanted, packets are not fetched whole; their headers take
// about so much to begin with.
constexpr std::size_t kFewBlocks = 4;
constexpr std::uint64_t kShortHeader = 512, kHeaderPerBlock = 6;
/// Blocks that one thread decodes in a row.
constexpr std::size_t kBlocksPerTask = 4;

/// Bytes of a range of the file that has been read, with what was asked for around it.
struct Chunk
{
    ByteRange range;
    Bytes bytes;
};

CError readChunks(ByteSource &source, std::vector<ByteRange> ranges, const CancelFlag &cancel,
                  std::vector<Chunk> *chunks)
{
    ranges = joinedRanges(std::move(ranges), kJoinGap);
    std::vector<Bytes> bytes;
    if (CError error = source.read(ranges, cancel, &bytes))
        return error;
    chunks->clear();
    for (std::size_t i = 0; i < ranges.size(); ++i)
        chunks->push_back({ranges[i], std::move(bytes[i])});
    return {};
}

/// The bytes from \a offset on in \a chunks (sorted); null when they are not there.
const std::uint8_t *bytesAt(const std::vector<Chunk> &chunks, std::uint64_t offset, std::uint64_t length)
{
    auto chunk = std::upper_bound(chunks.begin(), chunks.end(), offset,
                                  [](std::uint64_t at, const Chunk &c) { return at < c.range.offset; });
    if (chunk == chunks.begin())
        return nullptr;
    --chunk;
    return offset + length <= chunk->range.end() ? chunk->bytes.data() + (offset - chunk->range.offset) : nullptr;
}

/// Coefficients in the smallest type that holds them.
Plane toPlane(const BlockPlace &place, const std::vector<std::int32_t> &coefficients, int bitPlanes)
{
    Plane plane = makePlane(place.name.component, place.rect, bitPlanes <= 14 ? SampleType::Int16 : SampleType::Int32);
    if (plane.type == SampleType::Int32) {
        std::copy(coefficients.begin(), coefficients.end(), reinterpret_cast<std::int32_t *>(plane.bytes.data()));
    } else {
        auto *out = reinterpret_cast<std::int16_t *>(plane.bytes.data());
        for (std::size_t i = 0; i < coefficients.size(); ++i)
            out[i] = static_cast<std::int16_t>(coefficients[i]);
    }
    return plane;
}

/// H.1: coefficients of the region of interest are the ones above the shift; they come down again.
void undoRegionOfInterest(int shift, std::vector<std::int32_t> *coefficients)
{
    for (std::int32_t &value : *coefficients) {
        const std::int32_t magnitude = value < 0 ? -value : value;
        if (magnitude >= std::int64_t(1) << (shift + 1)) // doubled
            value = value < 0 ? -(magnitude >> shift) : magnitude >> shift;
    }
}

/// What a damaged packet header has told is forgotten.
void dropFromLayer(PrecinctIndex &index, int layer)
{
    for (std::vector<BlockState> &band : index.blocks)
        for (BlockState &block : band)
            while (!block.pieces.empty() && block.pieces.back().layer >= layer)
                block.pieces.pop_back();
}

} // namespace

std::size_t PrecinctIndex::memoryUse() const
{
    std::size_t sum = sizeof(*this);
    for (const std::vector<BlockState> &band : blocks) {
        sum += band.size() * sizeof(BlockState);
        for (const BlockState &block : band)
            sum += block.pieces.capacity() * sizeof(BlockPiece) + 16;
    }
    return sum;
}

struct BlockStore::PrecinctTask
{
    const BlockRequest *request = nullptr;
    std::size_t requestNumber = 0;
    PrecinctKey key{};
    std::vector<const BlockPlace *> blocks;
    std::shared_ptr<const PrecinctIndex> index;
    std::vector<Chunk> chunks; ///< bytes at hand, sorted
    bool isDamaged = false;
};

BlockStore::BlockStore(std::shared_ptr<ByteSource> source, const MainHeader &header, std::uint64_t fileNumber)
    : source(std::move(source))
    , header(header)
    , fileNumber(fileNumber)
    , precincts(kPrecinctBudget)
{
}

TileCache::Key BlockStore::cacheKey(const TileToDecode &tile, const BlockName &name) const
{
    TileCache::Key key;
    key.file = fileNumber;
    key.tile = tile.tile;
    key.layers = static_cast<std::uint16_t>(tile.layers);
    key.component = static_cast<std::uint16_t>(name.component);
    key.block = name.number();
    return key;
}

std::vector<BlockStore::PrecinctTask> BlockStore::collectMissing(const std::vector<BlockRequest> &requests,
                                                                 std::vector<BlockSet> *sets) const
{
    std::vector<PrecinctTask> tasks;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        const BlockRequest &request = requests[i];
        std::unordered_map<PrecinctKey, std::size_t, PrecinctKeyHash> byPrecinct;
        for (const BlockPlace &place : request.blocks) {
            std::vector<TileCache::PlanePtr> cached = TileCache::instance().find(cacheKey(request.tile, place.name));
            if (!cached.empty()) {
                (*sets)[i].insert(place.name.component, place.name.number(), std::move(cached.front()));
                continue;
            }
            const PrecinctKey key{request.tile.tile, place.name.component, place.name.resolution, request.tile.layers,
                                  place.name.precinct};
            const auto [found, isNew] = byPrecinct.emplace(key, tasks.size());
            if (isNew) {
                PrecinctTask task;
                task.request = &request;
                task.requestNumber = i;
                task.key = key;
                tasks.push_back(std::move(task));
            }
            tasks[found->second].blocks.push_back(&place);
        }
    }
    return tasks;
}

/// Where the packets of the precinct lie, by layer.
std::vector<ByteRange> BlockStore::packetsOf(const PrecinctTask &task) const
{
    const TileIndex &index = *task.request->tile.index;
    std::vector<ByteRange> packets;
    for (int layer = 0; layer < task.key.layers; ++layer) {
        const PacketPlace place =
            index.place(index.packets().number(task.key.component, task.key.resolution, task.key.precinct, layer));
        packets.push_back({place.offset, place.length});
    }
    return packets;
}

/// Bytes of each packet that are read at first: from a distant source no more than the headers when few of the
/// precinct's blocks are wanted.
std::uint64_t BlockStore::firstRead(const PrecinctTask &task) const
{
    if (!source->isRemote())
        return kWholePacket;
    const TileIndex &index = *task.request->tile.index;
    std::uint64_t blocks = 0;
    for (const BandGrid &band : bandGrids(componentRect(index.rect(), header.components[task.key.component]),
                                          index.style().components[task.key.component],
                                          index.packets().grid(task.key.component, task.key.resolution),
                                          task.key.resolution, task.key.precinct))
        blocks += band.count();
    return task.blocks.size() * kFewBlocks < blocks ? kShortHeader + blocks * kHeaderPerBlock : kWholePacket;
}

/// Has a distant source fetch the packets of precincts that are not parsed yet.
CError BlockStore::prefetchPackets(std::vector<PrecinctTask> &tasks, const CancelFlag &cancel)
{
    std::vector<ByteRange> ranges;
    for (PrecinctTask &task : tasks) {
        task.index = precincts.find(task.key);
        if (task.index)
            continue;
        const std::uint64_t limit = firstRead(task);
        for (const ByteRange &packet : packetsOf(task))
            ranges.push_back({packet.offset, std::min(packet.length, limit)});
    }
    return source->prefetch(ranges, cancel);
}

/// Has a distant source fetch the bytes of the blocks that came with no packet.
CError BlockStore::prefetchPieces(const std::vector<PrecinctTask> &tasks, const CancelFlag &cancel)
{
    std::vector<ByteRange> ranges;
    for (const PrecinctTask &task : tasks)
        for (const BlockPlace *place : task.blocks)
            for (const ByteRange &range : piecesOf(task.index->blocks[place->name.band][place->name.block]))
                if (!bytesAt(task.chunks, range.offset, range.length))
                    ranges.push_back(range);
    return source->prefetch(ranges, cancel);
}

CError BlockStore::loadPrecinct(PrecinctTask &task, const CancelFlag &cancel)
{
    if (task.index)
        return {};
    std::shared_ptr<PrecinctIndex> parsed;
    if (CError error = parsePrecinct(task, packetsOf(task), cancel, &parsed))
        return error;
    task.index = parsed;
    precincts.insert(task.key, parsed);
    return {};
}

CError BlockStore::parsePrecinct(PrecinctTask &task, const std::vector<ByteRange> &packets, const CancelFlag &cancel,
                                 std::shared_ptr<PrecinctIndex> *result)
{
    const TileIndex &index = *task.request->tile.index;
    const ComponentStyle &style = index.style().components[task.key.component];
    const IntRect rect = componentRect(index.rect(), header.components[task.key.component]);
    const PrecinctGrid &grid = index.packets().grid(task.key.component, task.key.resolution);
    for (std::uint64_t limit = firstRead(task);; limit *= 8) {
        std::vector<ByteRange> ranges;
        bool isAll = true;
        for (const ByteRange &packet : packets) {
            ranges.push_back({packet.offset, std::min(packet.length, limit)});
            isAll &= packet.length <= limit;
        }
        if (CError error = readChunks(*source, ranges, cancel, &task.chunks))
            return error;
        Precinct precinct(rect, style, grid, task.key.resolution, task.key.precinct, index.style().usesEph());
        Precinct::Outcome outcome = Precinct::Outcome::Ok;
        int soundLayers = 0;
        for (std::size_t layer = 0; layer < packets.size() && outcome == Precinct::Outcome::Ok; ++layer) {
            if (packets[layer].length == 0)
                break; // cut off; the layers before it stand
            std::size_t headerLength = 0;
            std::uint64_t bodyLength = 0;
            outcome = precinct.parse(bytesAt(task.chunks, ranges[layer].offset, ranges[layer].length),
                                     static_cast<std::size_t>(ranges[layer].length), static_cast<int>(layer),
                                     &headerLength, &bodyLength);
            if (outcome != Precinct::Outcome::Ok)
                break;
            precinct.placeLast(packets[layer].offset);
            ++soundLayers;
        }
        if (outcome == Precinct::Outcome::NeedsMore && !isAll)
            continue;
        task.isDamaged = outcome != Precinct::Outcome::Ok;
        auto parsed = std::make_shared<PrecinctIndex>();
        for (const Precinct::BandState &band : precinct.bands())
            parsed->blocks.push_back(band.blocks);
        if (task.isDamaged)
            dropFromLayer(*parsed, soundLayers);
        *result = std::move(parsed);
        return {};
    }
}

int BlockStore::magnitudeBits(const TileToDecode &tile, const BlockPlace &place) const
{
    const int c = place.name.component;
    const TileIndex::Quantization &quantization = tile.index->quantization()[c];
    return bandQuantization(quantization.parameters, tile.index->style().components[c].isReversible,
                            header.components[c].bits, place.name.resolution, place.orientation)
        .magnitudeBits;
}

/// Where the pieces of a block lie in the file, as far as it reaches.
std::vector<ByteRange> BlockStore::piecesOf(const BlockState &state) const
{
    const std::uint64_t fileSize = source->size();
    std::vector<ByteRange> ranges;
    for (const BlockPiece &piece : state.pieces) {
        const std::uint64_t offset = std::min(piece.offset, fileSize);
        ranges.push_back({offset, std::min<std::uint64_t>(piece.length, fileSize - offset)});
    }
    return ranges;
}

/// Gathers the bytes of a block's pieces, up to the first of which the file does not hold all.
CError BlockStore::readPieces(const PrecinctTask &task, const BlockState &state, const CancelFlag &cancel,
                              std::vector<std::uint8_t> *data, std::vector<std::uint32_t> *lengths)
{
    std::vector<Chunk> own;
    const std::vector<Chunk> *chunks = &task.chunks;
    const std::vector<ByteRange> ranges = piecesOf(state);
    bool isAtHand = true;
    for (const ByteRange &range : ranges)
        isAtHand &= range.length == 0 || bytesAt(*chunks, range.offset, range.length);
    if (!isAtHand) {
        if (CError error = readChunks(*source, ranges, cancel, &own))
            return error;
        chunks = &own;
    }
    data->clear();
    lengths->clear();
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        const ByteRange &range = ranges[i];
        if (range.length < state.pieces[i].length)
            break; // cut off: passes without their bytes would decode to noise
        lengths->push_back(static_cast<std::uint32_t>(range.length));
        if (const std::uint8_t *bytes = range.length > 0 ? bytesAt(*chunks, range.offset, range.length) : nullptr)
            data->insert(data->end(), bytes, bytes + range.length);
    }
    return {};
}

CError BlockStore::decodeBlock(const PrecinctTask &task, const BlockPlace &place, const CancelFlag &cancel,
                               TileCache::PlanePtr *plane, bool *isSound)
{
    thread_local BlockDecoder decoder;
    thread_local HtBlockDecoder htDecoder;
    thread_local std::vector<std::int32_t> coefficients;
    const TileToDecode &tile = task.request->tile;
    const BlockState &state = task.index->blocks[place.name.band][place.name.block];
    CodeBlock block;
    block.width = static_cast<int>(place.rect.width());
    block.height = static_cast<int>(place.rect.height());
    block.orientation = place.orientation;
    block.style = tile.index->style().components[place.name.component].codeBlockStyle;
    const int shift = regionOfInterestShift(tile.index->quantization()[place.name.component].regionOfInterest);
    const int magnitude = magnitudeBits(tile, place) + shift;
    block.bitPlanes = magnitude - state.zeroBitPlanes;
    coefficients.resize(std::size_t(block.width) * block.height);
    *isSound = true;
    if (!state.pieces.empty() && block.bitPlanes > 0) {
        std::vector<std::uint32_t> lengths;
        if (CError error = readPieces(task, state, cancel, &block.data, &lengths))
            return error;
        CodewordSegment segment;
        for (std::size_t i = 0; i < lengths.size(); ++i) {
            segment.length += lengths[i];
            segment.passes += state.pieces[i].passes;
            if (!state.pieces[i].endsSegment && i + 1 < lengths.size())
                continue;
            block.segments.push_back(segment);
            segment = {segment.offset + segment.length, 0, 0};
        }
    }
    const bool isHighThroughput = block.style & BlockStyle::kHighThroughput;
    *isSound =
        isHighThroughput ? htDecoder.decode(block, coefficients.data()) : decoder.decode(block, coefficients.data());
    if (shift > 0)
        undoRegionOfInterest(std::min(shift, 30), &coefficients);
    *plane =
        std::make_shared<const Plane>(toPlane(place, coefficients, isHighThroughput ? magnitude : block.bitPlanes));
    return {};
}

CError BlockStore::prefetch(const std::vector<BlockRequest> &requests, const CancelFlag &cancel)
{
    std::vector<BlockSet> cached(requests.size());
    std::vector<PrecinctTask> tasks = collectMissing(requests, &cached);
    return prefetchPackets(tasks, cancel);
}

CError BlockStore::fetch(const std::vector<BlockRequest> &requests, bool resilient, const CancelFlag &cancel,
                         std::vector<BlockSet> *sets, std::string *damage)
{
    sets->assign(requests.size(), {});
    std::vector<PrecinctTask> tasks = collectMissing(requests, sets);
    std::mutex mutex; // guards the results of the threads
    const auto noteDamage = [&](const PrecinctTask &task) {
        const std::string text = "Part of tile " + std::to_string(task.key.tile) + " is damaged.";
        if (!resilient)
            return CError(PLK_ERR_DECODE, text);
        std::lock_guard<std::mutex> lock(mutex);
        *damage = text;
        return CError();
    };
    if (CError error = prefetchPackets(tasks, cancel))
        return error;
    if (CError error = runAll(tasks.size(), cancel, [&](std::size_t i) {
            CError failed = loadPrecinct(tasks[i], cancel);
            return failed.IsSuccess() && tasks[i].isDamaged ? noteDamage(tasks[i]) : failed;
        }))
        return error;
    if (source->isRemote())
        if (CError error = prefetchPieces(tasks, cancel))
            return error;

    std::vector<std::pair<const PrecinctTask *, std::size_t>> groups;
    for (const PrecinctTask &task : tasks)
        for (std::size_t block = 0; block < task.blocks.size(); block += kBlocksPerTask)
            groups.emplace_back(&task, block);
    return runAll(groups.size(), cancel, [&](std::size_t i) {
        const PrecinctTask &task = *groups[i].first;
        const std::size_t end = std::min(groups[i].second + kBlocksPerTask, task.blocks.size());
        for (std::size_t b = groups[i].second; b < end; ++b) {
            const BlockPlace &place = *task.blocks[b];
            TileCache::PlanePtr plane;
            bool isSound = true;
            CError error = decodeBlock(task, place, cancel, &plane, &isSound);
            if (error.IsSuccess() && !isSound)
                error = noteDamage(task);
            if (error)
                return error;
            TileCache::instance().insert(cacheKey(task.request->tile, place.name), plane);
            std::lock_guard<std::mutex> lock(mutex);
            (*sets)[task.requestNumber].insert(place.name.component, place.name.number(), std::move(plane));
        }
        return CError();
    });
}

} // namespace xrv
