#include "codestreamreader.h"

#include "openjpegdecoder.h"
#include "parallel.h"
#include "tilesynthesis.h"

#include "codestream/canvas.h"
#include "codestream/tilecodestream.h"
#include "decode/transform/planeops.h"
#include "decode/transform/rectset.h"

#include <algorithm>
#include <chrono>
#include <cmath>

using PLK::CError;

namespace xrv {

namespace {

/// Cells of one component that OpenJPEG decodes in one piece at most; bounds what it needs at a time.
constexpr std::int64_t kMaxCellsPerJob = 4 << 20;
/// OpenJPEG 2.5.0 decodes parts of tiles with high-throughput code-blocks wrongly, so they are decoded whole, up to
/// this many cells of all components together.
constexpr std::int64_t kMaxHighThroughputCells = std::int64_t(192) << 20;
/// Size of the pieces in which blocks are put together, cells.
constexpr std::int64_t kPieceWidth = 512, kPieceHeight = 256;
/// Coefficients that are decoded before they are put together, so that memory stays bounded.
constexpr std::int64_t kMaxCellsPerBatch = 24 << 20;
/// Levels go on until the longer side is no longer than this.
constexpr std::uint32_t kSmallestLevel = 64;
/// Weight of the newest measurement in the decoding rate.
constexpr double kRateWeight = 0.3;
/// What a bit takes to come from a distant source, at 20 Mbit/s.
constexpr double kLineNanosecondsPerBit = 50.0;
/// Cost of one decode besides its cells.
constexpr double kMillisecondsPerJob = 0.3;

std::string incompleteTile(std::uint32_t tile)
{
    return "Tile " + std::to_string(tile) + " is incomplete.";
}

/// Decomposition levels that all of \a components have.
int minLevels(const TileIndex &index, const std::vector<int> &components)
{
    int levels = 32;
    for (const int c : components)
        levels = std::min(levels, index.style().components[c].decompositionLevels);
    return levels;
}

} // namespace

CodestreamReader::CodestreamReader(std::shared_ptr<ByteSource> source, ByteRange codestream,
                                   std::unique_ptr<MainHeader> mainHeader)
    : source(std::move(source))
    , codestream(codestream)
    , header(std::move(mainHeader))
    , fileNumber(TileCache::instance().fileNumber(this->source->identity()))
    , planner(*header, raster, fileNumber)
    , indexes(this->source, codestream, *header)
    , blocks(this->source, *header, fileNumber)
{
    describe();
    // Block decoding takes time by the bit, and so does a line: guess it from the compressed size until it is measured.
    const double cells = double(raster.width) * raster.height * double(raster.components.size());
    const double bitsPerCell = std::min(16.0, 8.0 * double(codestream.length) / cells);
    nanosecondsPerCell = 10.0 + 25.0 * bitsPerCell;
    if (this->source->isRemote())
        nanosecondsPerCell = nanosecondsPerCell + kLineNanosecondsPerBit * bitsPerCell * DecodePool::threads();
}

void CodestreamReader::describe()
{
    raster.canvasX0 = header->x0;
    raster.canvasY0 = header->y0;
    raster.canvasX1 = header->x1;
    raster.canvasY1 = header->y1;
    raster.tileWidth = header->tileWidth;
    raster.tileHeight = header->tileHeight;
    raster.tilesAcross = header->tilesAcross;
    raster.tilesDown = header->tilesDown;
    raster.qualityLayers = header->style.layers;
    raster.minStepX = raster.minStepY = 255;
    raster.isLossless = true;
    for (std::size_t c = 0; c < header->components.size(); ++c) {
        const MainHeader::Component &component = header->components[c];
        raster.components.push_back({component.bits, component.isSigned, component.stepX, component.stepY,
                                     sampleTypeFor(component.bits, component.isSigned)});
        raster.minStepX = std::min<std::uint32_t>(raster.minStepX, component.stepX);
        raster.minStepY = std::min<std::uint32_t>(raster.minStepY, component.stepY);
        raster.isLossless &= header->style.components[c].isReversible;
    }
    raster.width = static_cast<std::uint32_t>(ceilDiv(raster.canvasX1, raster.minStepX) -
                                              ceilDiv(raster.canvasX0, raster.minStepX));
    raster.height = static_cast<std::uint32_t>(ceilDiv(raster.canvasY1, raster.minStepY) -
                                               ceilDiv(raster.canvasY0, raster.minStepY));
    raster.codedLevels = header->style.minDecompositionLevels() + 1;
    raster.levels = 1;
    while (std::max(raster.width, raster.height) >> (raster.levels - 1) > kSmallestLevel)
        ++raster.levels;
    raster.levels = std::max(raster.levels, std::min(raster.codedLevels, 32));
}

ReadCost CodestreamReader::cost(const ReadRequest &request)
{
    const DecodePlan planned = planner.plan(request);
    ReadCost cost;
    cost.blocks = planned.tiles;
    cost.blocksCached = planned.tilesCached;
    const int averagedLevels = std::max(0, request.level - (raster.codedLevels - 1));
    double cells = 0.0;
    for (const DecodeJob &job : planned.jobs)
        cells += std::ldexp(double(areaOf(job.levelRect)) * double(job.components.size()), 2 * averagedLevels);
    cost.milliseconds = (cells * nanosecondsPerCell * 1e-6 + double(planned.jobs.size()) * kMillisecondsPerJob) /
                        double(DecodePool::threads());
    return cost;
}

CError CodestreamReader::read(const ReadRequest &request, ReadResult *result)
{
    DecodePlan planned = planner.plan(request);
    std::vector<Decoded> decoded(planned.jobs.size());
    if (CError error = decodeAll(request, planned.jobs, &decoded))
        return error;
    result->planes.clear();
    result->damaged = false;
    for (const Decoded &one : decoded) {
        planned.cached.insert(planned.cached.end(), one.planes.begin(), one.planes.end());
        if (!one.damage.empty() && !result->damaged) {
            result->damaged = true;
            result->damage = one.damage;
        }
    }
    for (std::size_t i = 0; i < request.components.size(); ++i) {
        const int c = request.components[i];
        Plane plane = makePlane(c, planned.wanted[i], raster.components[c].sampleType);
        for (const TileCache::PlanePtr &piece : planned.cached)
            if (piece->component == c)
                copyCells(*piece, &plane);
        result->planes.push_back(std::move(plane));
    }
    return {};
}

CError CodestreamReader::decodeAll(const ReadRequest &request, const std::vector<DecodeJob> &jobs,
                                   std::vector<Decoded> *decoded)
{
    if (jobs.empty())
        return {};
    const auto start = std::chrono::steady_clock::now();
    std::vector<TileIndexPtr> tileIndexes;
    if (CError error = loadIndexes(request, jobs, &tileIndexes))
        return error;
    if (CError error = decodeByBlocks(request, jobs, tileIndexes, decoded))
        return error;
    std::vector<std::size_t> others;
    double cells = 0.0;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        cells += double(areaOf(jobs[i].levelRect)) * double(jobs[i].components.size());
        if (!TileSynthesis::supports(*header, *tileIndexes[i]))
            others.push_back(i);
    }
    CError error = runAll(others.size(), request.cancel, [&](std::size_t i) {
        const DecodeJob &job = jobs[others[i]];
        return decodeWhole(request, job, *tileIndexes[others[i]], &(*decoded)[others[i]]);
    });
    const double elapsed = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
    if (error.IsSuccess() && cells > 50000.0)
        nanosecondsPerCell =
            (1.0 - kRateWeight) * nanosecondsPerCell + kRateWeight * elapsed * DecodePool::threads() / cells;
    return error;
}

CError CodestreamReader::loadIndexes(const ReadRequest &request, const std::vector<DecodeJob> &jobs,
                                     std::vector<TileIndexPtr> *tileIndexes)
{
    std::vector<std::uint32_t> tiles;
    for (const DecodeJob &job : jobs)
        tiles.push_back(job.tile);
    return indexes.load(tiles, request.level, request.cancel, tileIndexes);
}

struct CodestreamReader::Batch
{
    /// A piece of a job that is put together in one go.
    struct Piece
    {
        std::size_t job;
        std::size_t request;
        int discarded;  ///< resolutions left out
        IntRect region; ///< on the canvas of the coded level
    };
    std::vector<BlockRequest> requests;
    std::vector<Piece> pieces;
    std::int64_t cells = 0;
};

CError CodestreamReader::prefetch(const std::vector<ReadRequest> &requests)
{
    if (!source->isRemote() || requests.size() < 2)
        return {};
    std::vector<DecodePlan> plans;
    for (const ReadRequest &request : requests)
        plans.push_back(planner.plan(request));
    if (CError error = prefetchIndexes(requests, plans))
        return error;
    Batch batch;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        std::vector<TileIndexPtr> tileIndexes;
        if (CError error = loadIndexes(requests[i], plans[i].jobs, &tileIndexes))
            return error;
        for (std::size_t job = 0; job < plans[i].jobs.size() && batch.cells < kMaxCellsPerBatch; ++job) {
            Decoded ignored; // damage is told when it is read
            const TileIndexPtr &index = tileIndexes[job];
            if (!index->isMissing() && TileSynthesis::supports(*header, *index))
                addToBatch(requests[i], plans[i].jobs, job, index, &batch, &ignored);
        }
    }
    return blocks.prefetch(batch.requests, requests.front().cancel);
}

/// All tiles of all requests at once.
CError CodestreamReader::prefetchIndexes(const std::vector<ReadRequest> &requests, const std::vector<DecodePlan> &plans)
{
    std::vector<std::uint32_t> tiles;
    int lowestLevel = requests.front().level;
    for (std::size_t i = 0; i < requests.size(); ++i) {
        lowestLevel = std::min(lowestLevel, requests[i].level);
        for (const DecodeJob &job : plans[i].jobs)
            tiles.push_back(job.tile);
    }
    std::sort(tiles.begin(), tiles.end());
    std::vector<TileIndexPtr> ignored;
    return indexes.load(tiles, lowestLevel, requests.front().cancel, &ignored);
}

CError CodestreamReader::decodeByBlocks(const ReadRequest &request, const std::vector<DecodeJob> &jobs,
                                        const std::vector<TileIndexPtr> &tileIndexes, std::vector<Decoded> *decoded)
{
    for (std::size_t next = 0; next < jobs.size();) {
        Batch batch;
        for (; next < jobs.size() && batch.cells < kMaxCellsPerBatch; ++next) {
            const TileIndexPtr &index = tileIndexes[next];
            if (index->isMissing() || !TileSynthesis::supports(*header, *index))
                continue;
            if (CError error = addToBatch(request, jobs, next, index, &batch, &(*decoded)[next]))
                return error;
        }
        if (CError error = decodeBatch(request, jobs, batch, decoded))
            return error;
    }
    return {};
}

CError CodestreamReader::addToBatch(const ReadRequest &request, const std::vector<DecodeJob> &jobs, std::size_t number,
                                    const TileIndexPtr &index, Batch *batch, Decoded *decoded) const
{
    const DecodeJob &job = jobs[number];
    if (index->isTruncated()) {
        decoded->damage = incompleteTile(job.tile);
        if (!request.resilient)
            return {PLK_ERR_TRUNCATED, decoded->damage};
    }
    const int discarded = std::min(request.level, minLevels(*index, job.components));
    const int averagedLevels = request.level - discarded;
    const IntRect region = scaledUp(job.levelRect, averagedLevels).intersected(levelRect(index->rect(), discarded));
    BlockRequest blockRequest{{job.tile, index, std::min(planner.layersOf(request), index->packets().layers())}, {}};
    for (const int c : job.components) {
        const IntRect rect = raster.components[c].fromCanvas(region);
        if (rect.isEmpty())
            continue;
        const std::vector<BlockPlace> places = blocksFor(componentRect(index->rect(), header->components[c]),
                                                         index->style().components[c], c, discarded, rect);
        blockRequest.blocks.insert(blockRequest.blocks.end(), places.begin(), places.end());
        batch->cells += areaOf(rect);
    }
    // Cut where averaged cells begin.
    for (const IntRect &piece : inPieces(job.levelRect, std::max<std::int64_t>(1, kPieceWidth >> averagedLevels),
                                         std::max<std::int64_t>(1, kPieceHeight >> averagedLevels)))
        batch->pieces.push_back(
            {number, batch->requests.size(), discarded, scaledUp(piece, averagedLevels).intersected(region)});
    batch->requests.push_back(std::move(blockRequest));
    return {};
}

CError CodestreamReader::decodeBatch(const ReadRequest &request, const std::vector<DecodeJob> &jobs, const Batch &batch,
                                     std::vector<Decoded> *decoded)
{
    std::vector<BlockSet> sets;
    std::string damage;
    if (CError error = blocks.fetch(batch.requests, request.resilient, request.cancel, &sets, &damage))
        return error;
    std::mutex mutex; // guards decoded
    return runAll(batch.pieces.size(), request.cancel, [&](std::size_t i) {
        const Batch::Piece &piece = batch.pieces[i];
        const DecodeJob &job = jobs[piece.job];
        const TileSynthesis synthesis(*header, batch.requests[piece.request].tile);
        Decoded ofPiece;
        for (Plane &plane : synthesis.planes(sets[piece.request], job.components, piece.discarded, piece.region))
            keep(request, job, std::move(plane), request.level - piece.discarded, &ofPiece);
        std::lock_guard<std::mutex> lock(mutex);
        Decoded &all = (*decoded)[piece.job];
        all.planes.insert(all.planes.end(), ofPiece.planes.begin(), ofPiece.planes.end());
        if (all.damage.empty())
            all.damage = damage;
        return CError();
    });
}

CError CodestreamReader::decodeWhole(const ReadRequest &request, const DecodeJob &job, const TileIndex &index,
                                     Decoded *decoded)
{
    CError error;
    if (index.isMissing())
        error = CError(PLK_ERR_TRUNCATED, "Tile " + std::to_string(job.tile) + " is missing.");
    if (error.IsSuccess() && index.isTruncated()) {
        decoded->damage = incompleteTile(job.tile);
        if (!request.resilient)
            error = CError(PLK_ERR_TRUNCATED, decoded->damage);
    }
    if (error)
        return settle(request, job, error, decoded);
    const int averagedLevels = request.level - std::min(request.level, index.style().minDecompositionLevels());
    const std::int64_t side = std::max<std::int64_t>(1, 2048 >> averagedLevels);
    const IntRect rect = header->isHighThroughput ? levelRect(index.rect(), request.level) : job.levelRect;
    const std::int64_t tileCells = areaOf(rect) << (2 * averagedLevels);
    if (header->isHighThroughput && tileCells * std::int64_t(job.components.size()) > kMaxHighThroughputCells)
        return {PLK_ERR_UNSUPPORTED, "The tiles of this high-throughput image are too large to be decoded."};
    const bool isSmall = header->isHighThroughput || tileCells <= kMaxCellsPerJob;
    for (const IntRect &piece : isSmall ? std::vector<IntRect>{rect} : inPieces(rect, side, side)) {
        const DecodeJob part{job.tile, piece, job.components};
        if (request.cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        if (CError failed = settle(request, part, decodeCells(request, part, index, decoded), decoded))
            return failed;
    }
    return {};
}

CError CodestreamReader::settle(const ReadRequest &request, const DecodeJob &job, CError error, Decoded *decoded)
{
    const int code = error.GetErrorNumber();
    const bool isDamage = code == PLK_ERR_DECODE || code == PLK_ERR_TRUNCATED || code == PLK_ERR_MALFORMED;
    if (error.IsSuccess() || !request.resilient || !isDamage)
        return error;
    decoded->damage = error.GetErrorMessage();
    for (const int c : job.components)
        keep(request, job,
             makePlane(c, raster.components[c].fromCanvas(job.levelRect), raster.components[c].sampleType), 0, decoded);
    return {};
}

CError CodestreamReader::decodeCells(const ReadRequest &request, const DecodeJob &job, const TileIndex &index,
                                     Decoded *decoded)
{
    const int discarded = std::min(request.level, index.style().minDecompositionLevels());
    const int averagedLevels = request.level - discarded;
    const IntRect codedTile = levelRect(index.rect(), discarded);
    const IntRect region = scaledUp(job.levelRect, averagedLevels).intersected(codedTile);
    if (region.isEmpty())
        return {};
    TileCodestream small;
    if (CError error =
            makeTileCodestream(*source, *header, index, {job.components, discarded, request.qualityLayers, region},
                               request.cancel, &small))
        return error;

    OpenJpegRequest decode;
    decode.codestream = &small;
    decode.isWholeTile = region == codedTile;
    decode.area =
        scaledUp(region, small.levelsToDiscard).intersected(levelRect(index.rect(), discarded - small.levelsToDiscard));
    const bool hasTransform = index.style().multipleComponentTransform && job.components.front() <= 2;
    if (small.hasAllComponents && !hasTransform && job.components.size() < header->components.size())
        decode.components = job.components;
    std::vector<DecodedComponent> cells;
    if (CError error = decodeWithOpenJpeg(decode, &cells))
        return {error.GetErrorNumber(),
                "Tile " + std::to_string(job.tile) + " cannot be decoded: " + error.GetErrorMessage()};

    const bool isSubset = cells.size() == job.components.size();
    for (std::size_t i = 0; i < job.components.size(); ++i) {
        const int c = job.components[i];
        const std::size_t at = isSubset ? i : std::size_t(c);
        const IntRect rect = raster.components[c].fromCanvas(region);
        if (at >= cells.size() || cells[at].width != rect.width() || cells[at].height != rect.height())
            return {PLK_ERR_DECODE, "Tile " + std::to_string(job.tile) + " has another size than it should."};
        keep(request, job, planeFromCells(c, rect, raster.components[c].sampleType, cells[at]), averagedLevels,
             decoded);
    }
    return {};
}

void CodestreamReader::keep(const ReadRequest &request, const DecodeJob &job, Plane plane, int averagedLevels,
                            Decoded *decoded)
{
    const int component = plane.component;
    auto shared =
        std::make_shared<const Plane>(averagedLevels > 0 ? averaged(plane, averagedLevels) : std::move(plane));
    if (shared->rect.isEmpty())
        return;
    decoded->planes.push_back(shared);
    TileCache::instance().insert(planner.key(request, job.tile, component), std::move(shared));
}

void CodestreamReader::dropCached()
{
    TileCache::instance().drop(fileNumber);
}

namespace {

/// Packet indexes are some bytes for each packet; far larger ones are none.
constexpr std::uint64_t kMaxIndexBytes = 64u << 20;
/// Bytes that a main header takes at most as a rule.
constexpr std::uint64_t kUsualHeader = 16 * 1024;

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

CError RasterReader::open(std::shared_ptr<ByteSource> source, ByteRange codestream,
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
    auto made = std::make_unique<CodestreamReader>(std::move(source), codestream, std::move(header));
    if (made->info().width == 0 || made->info().height == 0)
        return {PLK_ERR_MALFORMED,
                "The image has no cells: its components are sampled more coarsely than it is large."};
    *reader = std::move(made);
    return {};
}

} // namespace xrv
