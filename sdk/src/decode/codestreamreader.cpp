#include "codestreamreader.h"

#include "../codestream/canvas.h"
#include "../codestream/tilecodestream.h"
#include "parallel.h"
#include "planeops.h"
#include "rectset.h"
#include "tilesynthesis.h"

#include <algorithm>
#include <chrono>
#include <cmath>

using PLK::CError;

namespace xrv {

namespace {

/// Tile indexes kept per file, in bytes.
constexpr std::size_t kIndexBudget = 32u << 20;
/// Cells of one component that OpenJPEG decodes in one piece at most; bounds what it needs at a time.
constexpr std::int64_t kMostCellsPerJob = 4 << 20;
/// OpenJPEG 2.5.0 decodes parts of tiles with high-throughput code-blocks wrongly, so they are decoded whole, up to
/// this many cells of all components together.
constexpr std::int64_t kMostHighThroughputCells = std::int64_t(192) << 20;
/// Size of the pieces in which blocks are put together, cells.
constexpr std::int64_t kPieceWidth = 512, kPieceHeight = 256;
/// Coefficients that are decoded before they are put together, so that memory stays bounded.
constexpr std::int64_t kMostCellsPerBatch = 24 << 20;
/// What is decoded ends on this grid, so that small pans do not leave slivers.
constexpr std::int64_t kPieceGrid = 64;
/// Levels go on until the longer side is no longer than this.
constexpr std::uint32_t kSmallestLevel = 64;
/// Weight of the newest measurement in the decoding rate.
constexpr double kRateWeight = 0.3;
/// Cost of one decode besides its cells.
constexpr double kMillisecondsPerJob = 0.3;

SampleType sampleTypeFor(const MainHeader::Component &component)
{
    if (component.bits <= 8)
        return component.isSigned ? SampleType::Int8 : SampleType::UInt8;
    if (component.bits <= 16)
        return component.isSigned ? SampleType::Int16 : SampleType::UInt16;
    return SampleType::Int32;
}

/// The canvas rectangle of which \a rect is the part of one component.
IntRect toCanvas(const IntRect &rect, const ComponentInfo &component)
{
    return {rect.x0 * component.stepX, rect.y0 * component.stepY, rect.x1 * component.stepX, rect.y1 * component.stepY};
}

IntRect toComponent(const IntRect &canvas, const ComponentInfo &component)
{
    return {ceilDiv(canvas.x0, component.stepX), ceilDiv(canvas.y0, component.stepY),
            ceilDiv(canvas.x1, component.stepX), ceilDiv(canvas.y1, component.stepY)};
}

IntRect scaledUp(const IntRect &rect, int bits)
{
    return {rect.x0 << bits, rect.y0 << bits, rect.x1 << bits, rect.y1 << bits};
}

/// Decomposition levels that all of \a components have.
int minLevels(const TileIndex &index, const std::vector<int> &components)
{
    int levels = 32;
    for (const int c : components)
        levels = std::min(levels, index.style().components[c].decompositionLevels);
    return levels;
}

/// Widened to kPieceGrid within \a bounds.
IntRect onGrid(const IntRect &rect, const IntRect &bounds)
{
    const auto down = [](std::int64_t v) { return v / kPieceGrid * kPieceGrid; };
    const auto up = [](std::int64_t v) { return (v + kPieceGrid - 1) / kPieceGrid * kPieceGrid; };
    return IntRect{down(rect.x0), down(rect.y0), up(rect.x1), up(rect.y1)}.intersected(bounds);
}

/// \a rect in pieces of at most \a width by \a height.
std::vector<IntRect> inPieces(const IntRect &rect, std::int64_t width, std::int64_t height)
{
    std::vector<IntRect> pieces;
    for (std::int64_t y = rect.y0; y < rect.y1; y += height)
        for (std::int64_t x = rect.x0; x < rect.x1; x += width)
            pieces.push_back({x, y, std::min(rect.x1, x + width), std::min(rect.y1, y + height)});
    return pieces;
}

} // namespace

CodestreamReader::CodestreamReader(std::shared_ptr<ByteSource> source, ByteRange codestream,
                                   std::unique_ptr<MainHeader> mainHeader)
    : source(std::move(source))
    , codestream(codestream)
    , header(std::move(mainHeader))
    , table(this->source, codestream, *header)
    , fileNumber(TileCache::instance().fileNumber(this->source->identity()))
    , indexes(kIndexBudget)
    , blocks(this->source, *header, fileNumber)
{
    describe();
    // Block decoding takes time by the bit: guess it from the compressed size until it is measured.
    const double cells = double(raster.width) * raster.height * double(raster.components.size());
    nanosecondsPerCell = 10.0 + 25.0 * std::min(16.0, 8.0 * double(codestream.length) / cells);
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
        raster.components.push_back(
            {component.bits, component.isSigned, component.stepX, component.stepY, sampleTypeFor(component)});
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

IntRect CodestreamReader::wantedRect(const ReadRequest &request, int component) const
{
    const ComponentInfo &info = raster.components[component];
    const std::int64_t originX = ceilDiv(raster.canvasX0, raster.minStepX);
    const std::int64_t originY = ceilDiv(raster.canvasY0, raster.minStepY);
    const IntRect dataset = request.datasetRect.intersected({0, 0, raster.width, raster.height});
    if (dataset.isEmpty())
        return {};
    const std::int64_t stepX = std::int64_t(info.stepX) << request.level, stepY = std::int64_t(info.stepY)
                                                                                  << request.level;
    const IntRect cells{(dataset.x0 + originX) * raster.minStepX / stepX - 1,
                        (dataset.y0 + originY) * raster.minStepY / stepY - 1,
                        ceilDiv((dataset.x1 + originX) * raster.minStepX, stepX) + 1,
                        ceilDiv((dataset.y1 + originY) * raster.minStepY, stepY) + 1};
    return cells.intersected(raster.levelRect(component, request.level));
}

int CodestreamReader::layersOf(const ReadRequest &request) const
{
    return request.qualityLayers > 0 ? std::min(request.qualityLayers, raster.qualityLayers) : raster.qualityLayers;
}

TileCache::Key CodestreamReader::key(const ReadRequest &request, std::uint32_t tile, int component) const
{
    TileCache::Key key;
    key.file = fileNumber;
    key.tile = tile;
    key.level = static_cast<std::uint8_t>(request.level);
    const int layers =
        request.qualityLayers > 0 ? std::min(request.qualityLayers, raster.qualityLayers) : raster.qualityLayers;
    key.layers = static_cast<std::uint16_t>(layers);
    key.component = static_cast<std::uint16_t>(component);
    return key;
}

CodestreamReader::Plan CodestreamReader::plan(const ReadRequest &request)
{
    Plan plan;
    std::vector<IntRect> canvasRects;
    for (const int c : request.components) {
        plan.wanted.push_back(wantedRect(request, c));
        if (!plan.wanted.back().isEmpty())
            canvasRects.push_back(scaledUp(toCanvas(plan.wanted.back(), raster.components[c]), request.level));
    }
    if (canvasRects.empty())
        return plan;
    const IntRect canvas =
        boundingRect(canvasRects).intersected({raster.canvasX0, raster.canvasY0, raster.canvasX1, raster.canvasY1});
    const std::int64_t column0 = (canvas.x0 - header->tileX0) / header->tileWidth;
    const std::int64_t column1 = ceilDiv(canvas.x1 - header->tileX0, header->tileWidth);
    const std::int64_t row0 = (canvas.y0 - header->tileY0) / header->tileHeight;
    const std::int64_t row1 = ceilDiv(canvas.y1 - header->tileY0, header->tileHeight);
    for (std::int64_t row = row0; row < row1; ++row)
        for (std::int64_t column = column0; column < column1; ++column)
            planTile(request, static_cast<std::uint32_t>(row * header->tilesAcross + column), &plan);
    return plan;
}

void CodestreamReader::planTile(const ReadRequest &request, std::uint32_t tile, Plan *plan)
{
    const IntRect tileLevel = levelRect(tileRect(*header, tile), request.level);
    std::vector<std::vector<IntRect>> missing;
    std::vector<int> missingComponents;
    bool isWanted = false;
    for (std::size_t i = 0; i < request.components.size(); ++i) {
        const int c = request.components[i];
        const IntRect wanted = plan->wanted[i].intersected(toComponent(tileLevel, raster.components[c]));
        if (wanted.isEmpty())
            continue;
        isWanted = true;
        std::vector<IntRect> have;
        for (TileCache::PlanePtr &plane : TileCache::instance().find(key(request, tile, c))) {
            have.push_back(plane->rect);
            plan->cached.push_back(std::move(plane));
        }
        std::vector<IntRect> rest = subtract(wanted, have);
        if (rest.empty())
            continue;
        for (IntRect &rect : rest)
            rect = toCanvas(rect, raster.components[c]);
        missingComponents.push_back(c);
        missing.push_back(std::move(rest));
    }
    plan->tiles += isWanted ? 1 : 0;
    plan->tilesCached += isWanted && missing.empty() ? 1 : 0;
    if (!missing.empty())
        addJobs(request, tile, missing, missingComponents, plan);
}

std::vector<int> CodestreamReader::withTransformPartners(std::vector<int> components) const
{
    std::sort(components.begin(), components.end());
    components.erase(std::unique(components.begin(), components.end()), components.end());
    if (header->components.size() < 3 || !header->style.multipleComponentTransform || components.front() > 2)
        return components;
    std::vector<int> all{0, 1, 2};
    for (const int c : components)
        if (c > 2)
            all.push_back(c);
    return all;
}

void CodestreamReader::addJobs(const ReadRequest &request, std::uint32_t tile,
                               const std::vector<std::vector<IntRect>> &missing, const std::vector<int> &components,
                               Plan *plan) const
{
    const IntRect whole = levelRect(tileRect(*header, tile), request.level);
    const std::vector<int> all = withTransformPartners(components);
    // As a rule all components lack the same, after a pan the two sides of an L.
    std::vector<IntRect> rects = missing.front();
    for (const std::vector<IntRect> &ofComponent : missing)
        if (!(ofComponent == rects)) {
            std::vector<IntRect> every;
            for (const std::vector<IntRect> &one : missing)
                every.insert(every.end(), one.begin(), one.end());
            rects = {boundingRect(every)};
            break;
        }
    if (header->isHighThroughput)
        rects = {whole}; // see kMostHighThroughputCells
    for (const IntRect &rect : rects) {
        const IntRect widened = onGrid(rect, whole);
        if (!widened.isEmpty())
            plan->jobs.push_back({tile, widened, all});
    }
}

ReadCost CodestreamReader::cost(const ReadRequest &request)
{
    const Plan planned = plan(request);
    ReadCost cost;
    cost.blocks = planned.tiles;
    cost.blocksCached = planned.tilesCached;
    const int averagedLevels = std::max(0, request.level - (raster.codedLevels - 1));
    double cells = 0.0;
    for (const Job &job : planned.jobs)
        cells += std::ldexp(double(areaOf(job.levelRect)) * double(job.components.size()), 2 * averagedLevels);
    cost.milliseconds = (cells * nanosecondsPerCell * 1e-6 + double(planned.jobs.size()) * kMillisecondsPerJob) /
                        double(DecodePool::threads());
    return cost;
}

CError CodestreamReader::read(const ReadRequest &request, ReadResult *result)
{
    Plan planned = plan(request);
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

CError CodestreamReader::decodeAll(const ReadRequest &request, const std::vector<Job> &jobs,
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
    const int threads = others.empty() ? 1 : std::max(1, DecodePool::threads() / static_cast<int>(others.size()));
    CError error = runAll(others.size(), request.cancel, [&](std::size_t i) {
        const Job &job = jobs[others[i]];
        return decodeWhole(request, job, *tileIndexes[others[i]], threads, &(*decoded)[others[i]]);
    });
    const double elapsed = std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
    if (error.IsSuccess() && cells > 50000.0)
        nanosecondsPerCell =
            (1.0 - kRateWeight) * nanosecondsPerCell + kRateWeight * elapsed * DecodePool::threads() / cells;
    return error;
}

CError CodestreamReader::loadIndexes(const ReadRequest &request, const std::vector<Job> &jobs,
                                     std::vector<TileIndexPtr> *tileIndexes)
{
    tileIndexes->resize(jobs.size());
    CError error = runAll(jobs.size(), request.cancel, [&](std::size_t i) {
        // Jobs stand by tile: the first one of a tile reads for all.
        if (i > 0 && jobs[i - 1].tile == jobs[i].tile)
            return CError();
        return tileIndex(jobs[i].tile, &(*tileIndexes)[i]);
    });
    for (std::size_t i = 1; i < jobs.size() && error.IsSuccess(); ++i)
        if (!(*tileIndexes)[i])
            (*tileIndexes)[i] = (*tileIndexes)[i - 1];
    return error;
}

namespace {

/// A piece of a job that is put together in one go.
struct Piece
{
    std::size_t job;
    IntRect region; ///< on the canvas of the coded level
    std::size_t request;
};

} // namespace

CError CodestreamReader::decodeByBlocks(const ReadRequest &request, const std::vector<Job> &jobs,
                                        const std::vector<TileIndexPtr> &tileIndexes, std::vector<Decoded> *decoded)
{
    for (std::size_t first = 0; first < jobs.size();) {
        std::vector<BlockRequest> requests;
        std::vector<Piece> pieces;
        std::int64_t cells = 0;
        for (; first < jobs.size() && cells < kMostCellsPerBatch; ++first) {
            const Job &job = jobs[first];
            const TileIndexPtr &index = tileIndexes[first];
            if (index->isMissing() || !TileSynthesis::supports(*header, *index))
                continue;
            if (index->isTruncated()) {
                (*decoded)[first].damage = "Tile " + std::to_string(job.tile) + " is incomplete.";
                if (!request.resilient)
                    return CError(PLK_ERR_TRUNCATED, (*decoded)[first].damage);
            }
            const int discarded = std::min(request.level, minLevels(*index, job.components));
            const int averagedLevels = request.level - discarded;
            const IntRect region =
                scaledUp(job.levelRect, averagedLevels).intersected(levelRect(index->rect(), discarded));
            BlockRequest blockRequest{{job.tile, index, std::min(layersOf(request), index->packets().layers())}, {}};
            for (const int c : job.components) {
                const IntRect rect = toComponent(region, raster.components[c]);
                if (rect.isEmpty())
                    continue;
                const std::vector<BlockPlace> places = blocksFor(componentRect(index->rect(), header->components[c]),
                                                                 index->style().components[c], c, discarded, rect);
                blockRequest.blocks.insert(blockRequest.blocks.end(), places.begin(), places.end());
                cells += areaOf(rect);
            }
            // Cut where averaged cells begin.
            for (const IntRect &piece :
                 inPieces(job.levelRect, std::max<std::int64_t>(1, kPieceWidth >> averagedLevels),
                          std::max<std::int64_t>(1, kPieceHeight >> averagedLevels)))
                pieces.push_back({first, scaledUp(piece, averagedLevels).intersected(region), requests.size()});
            requests.push_back(std::move(blockRequest));
        }
        std::vector<BlockSet> sets;
        std::string damage;
        if (CError error = blocks.fetch(requests, request.resilient, request.cancel, &sets, &damage))
            return error;
        std::mutex mutex; // guards decoded
        CError error = runAll(pieces.size(), request.cancel, [&](std::size_t i) {
            const Piece &piece = pieces[i];
            const Job &job = jobs[piece.job];
            const TileToDecode &tile = requests[piece.request].tile;
            const int discarded = std::min(request.level, minLevels(*tile.index, job.components));
            std::vector<Plane> planes =
                TileSynthesis(*header, tile).planes(sets[piece.request], job.components, discarded, piece.region);
            Decoded ofPiece;
            for (Plane &plane : planes)
                keep(request, job, std::move(plane), request.level - discarded, &ofPiece);
            std::lock_guard<std::mutex> lock(mutex);
            Decoded &all = (*decoded)[piece.job];
            all.planes.insert(all.planes.end(), ofPiece.planes.begin(), ofPiece.planes.end());
            if (all.damage.empty())
                all.damage = damage;
            return CError();
        });
        if (error)
            return error;
    }
    return {};
}

CError CodestreamReader::decodeWhole(const ReadRequest &request, const Job &job, const TileIndex &index, int threads,
                                     Decoded *decoded)
{
    CError error;
    if (index.isMissing())
        error = CError(PLK_ERR_TRUNCATED, "Tile " + std::to_string(job.tile) + " is missing.");
    if (error.IsSuccess() && index.isTruncated()) {
        decoded->damage = "Tile " + std::to_string(job.tile) + " is incomplete.";
        if (!request.resilient)
            error = CError(PLK_ERR_TRUNCATED, decoded->damage);
    }
    if (error)
        return settle(request, job, error, decoded);
    const int averagedLevels = request.level - std::min(request.level, index.style().minDecompositionLevels());
    const std::int64_t side = std::max<std::int64_t>(1, 2048 >> averagedLevels);
    const std::int64_t tileCells = areaOf(job.levelRect) << (2 * averagedLevels);
    if (header->isHighThroughput && tileCells * std::int64_t(job.components.size()) > kMostHighThroughputCells)
        return CError(PLK_ERR_UNSUPPORTED, "The tiles of this high-throughput image are too large to be decoded.");
    const bool isSmall = header->isHighThroughput || tileCells <= kMostCellsPerJob;
    for (const IntRect &piece : isSmall ? std::vector<IntRect>{job.levelRect} : inPieces(job.levelRect, side, side)) {
        const Job part{job.tile, piece, job.components};
        if (request.cancel.isRaised())
            return CError(PLK_ERR_CANCELLED, "The read was cancelled.");
        if (CError failed = settle(request, part, decodeCells(request, part, index, threads, decoded), decoded))
            return failed;
    }
    return {};
}

CError CodestreamReader::settle(const ReadRequest &request, const Job &job, CError error, Decoded *decoded)
{
    const int code = error.GetErrorNumber();
    const bool isDamage = code == PLK_ERR_DECODE || code == PLK_ERR_TRUNCATED || code == PLK_ERR_MALFORMED;
    if (error.IsSuccess() || !request.resilient || !isDamage)
        return error;
    decoded->damage = error.GetErrorMessage();
    for (const int c : job.components)
        keep(request, job,
             makePlane(c, toComponent(job.levelRect, raster.components[c]), raster.components[c].sampleType), 0,
             decoded);
    return {};
}

CError CodestreamReader::decodeCells(const ReadRequest &request, const Job &job, const TileIndex &index, int threads,
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
    decode.isStrict = !request.resilient;
    decode.threads = threads;
    const bool hasTransform = index.style().multipleComponentTransform && job.components.front() <= 2;
    if (small.hasAllComponents && !hasTransform && job.components.size() < header->components.size())
        decode.components = job.components;
    std::vector<DecodedComponent> cells;
    std::string warning;
    if (CError error = decodeWithOpenJpeg(decode, &cells, &warning))
        return CError(error.GetErrorNumber(),
                      "Tile " + std::to_string(job.tile) + " cannot be decoded: " + error.GetErrorMessage());

    const bool isSubset = cells.size() == job.components.size();
    for (std::size_t i = 0; i < job.components.size(); ++i) {
        const int c = job.components[i];
        const std::size_t at = isSubset ? i : std::size_t(c);
        const IntRect rect = toComponent(region, raster.components[c]);
        if (at >= cells.size() || cells[at].width != rect.width() || cells[at].height != rect.height())
            return CError(PLK_ERR_DECODE, "Tile " + std::to_string(job.tile) + " has another size than it should.");
        keep(request, job, planeFromCells(c, rect, raster.components[c].sampleType, cells[at]), averagedLevels,
             decoded);
    }
    return {};
}

void CodestreamReader::keep(const ReadRequest &request, const Job &job, Plane plane, int averagedLevels,
                            Decoded *decoded)
{
    const int component = plane.component;
    auto shared =
        std::make_shared<const Plane>(averagedLevels > 0 ? averaged(plane, averagedLevels) : std::move(plane));
    if (shared->rect.isEmpty())
        return;
    decoded->planes.push_back(shared);
    TileCache::instance().insert(key(request, job.tile, component), std::move(shared));
}

CError CodestreamReader::tileIndex(std::uint32_t tile, TileIndexPtr *index)
{
    *index = indexes.find(tile);
    if (*index)
        return {};
    // Two threads may read the same index at once; that costs less than making one wait.
    if (CError error = TileIndex::read(*source, *header, table, tile, index))
        return error;
    indexes.insert(tile, *index);
    return {};
}

void CodestreamReader::dropCached()
{
    TileCache::instance().drop(fileNumber);
}

CError RasterReader::open(std::shared_ptr<ByteSource> source, ByteRange codestream,
                          std::unique_ptr<RasterReader> *reader)
{
    auto header = std::make_unique<MainHeader>();
    if (CError error = readMainHeader(*source, codestream, header.get()))
        return error;
    *reader = std::make_unique<CodestreamReader>(std::move(source), codestream, std::move(header));
    return {};
}

} // namespace xrv
