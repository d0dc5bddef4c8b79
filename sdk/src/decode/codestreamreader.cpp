#include "codestreamreader.h"

#include "../codestream/canvas.h"
#include "../codestream/tilecodestream.h"
#include "decodepool.h"
#include "planeops.h"
#include "rectset.h"

#include <algorithm>
#include <chrono>
#include <cmath>

using PLK::CError;

namespace xrv {

namespace {

/// Tile indexes kept per file, in bytes.
constexpr std::size_t kIndexBudget = 32u << 20;
/// Cells of one component decoded in one piece at most; bounds what the codec needs at a time.
constexpr std::int64_t kMostCellsPerJob = 4 << 20;
/// Levels go on until the longer side is no longer than this.
constexpr std::uint32_t kSmallestLevel = 64;
/// A tile of up to this many cells is decoded whole.
constexpr std::int64_t kSmallTile = 192 * 192;
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

/// Widens [a, b) within [low, high) to where no further code-block has to be decoded for it: code-blocks of the highest
/// resolution's subbands stand on a grid of \a block cells, and the synthesis filters reach over their edges.
void widenToCodeBlocks(std::int64_t low, std::int64_t high, std::int64_t block, std::int64_t *a, std::int64_t *b)
{
    constexpr std::int64_t kReach = 8;
    const std::int64_t first = ((*a - kReach) / block) * block + kReach;
    const std::int64_t last = ((*b + kReach + block - 1) / block) * block - kReach;
    *a = std::max(low, std::min(*a, first));
    *b = std::min(high, std::max(*b, last));
    if (*a - low <= kReach)
        *a = low;
    if (high - *b <= kReach)
        *b = high;
}

} // namespace

CodestreamReader::CodestreamReader(std::shared_ptr<ByteSource> source, ByteRange codestream,
                                   std::unique_ptr<MainHeader> mainHeader)
    : source(std::move(source))
    , codestream(codestream)
    , header(std::move(mainHeader))
    , table(this->source, codestream, *header)
    , fileNumber(TileCache::instance().fileNumber(this->source->identity()))
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
    std::vector<IntRect> missing;
    std::vector<int> missingComponents;
    bool isFirst = true, isWanted = false;
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
        isFirst &= have.empty();
        const std::vector<IntRect> rest = subtract(wanted, have);
        if (rest.empty())
            continue;
        missingComponents.push_back(c);
        for (const IntRect &rect : rest)
            missing.push_back(toCanvas(rect, raster.components[c]));
    }
    plan->tiles += isWanted ? 1 : 0;
    plan->tilesCached += isWanted && missing.empty() ? 1 : 0;
    if (!missing.empty())
        addJobs(request, tile, std::move(missing), missingComponents, isFirst, plan);
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

void CodestreamReader::addJobs(const ReadRequest &request, std::uint32_t tile, std::vector<IntRect> missing,
                               const std::vector<int> &components, bool isFirst, Plan *plan) const
{
    const IntRect whole = levelRect(tileRect(*header, tile), request.level);
    const std::vector<int> all = withTransformPartners(components);
    IntRect rect = boundingRect(missing).intersected(whole);
    const int averagedLevels = std::max(0, request.level - (raster.codedLevels - 1));
    if (averagedLevels == 0) {
        const std::int64_t block = isFirst ? 128 : 512;
        widenToCodeBlocks(whole.x0, whole.x1, block, &rect.x0, &rect.x1);
        widenToCodeBlocks(whole.y0, whole.y1, block, &rect.y0, &rect.y1);
    }
    if (areaOf(whole) <= kSmallTile || areaOf(rect) * 10 >= areaOf(whole) * 9)
        rect = whole;
    // Pieces of bounded size, cut where the averaged cells begin.
    std::int64_t side = 2048;
    side = std::max<std::int64_t>(1, side >> averagedLevels);
    if (areaOf(rect) << (2 * averagedLevels) <= kMostCellsPerJob) {
        plan->jobs.push_back({tile, rect, all, rect == whole});
        return;
    }
    for (std::int64_t y = rect.y0; y < rect.y1; y += side)
        for (std::int64_t x = rect.x0; x < rect.x1; x += side) {
            const IntRect piece{x, y, std::min(rect.x1, x + side), std::min(rect.y1, y + side)};
            plan->jobs.push_back({tile, piece, all, piece == whole});
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
    if (CError error = runJobs(request, planned.jobs, &decoded))
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

CError CodestreamReader::runJobs(const ReadRequest &request, const std::vector<Job> &jobs,
                                 std::vector<Decoded> *decoded)
{
    const int threadsPerJob = jobs.empty() ? 1 : std::max(1, DecodePool::threads() / static_cast<int>(jobs.size()));
    std::mutex errorMutex;
    CError firstError;
    DecodePool::run(jobs.size(), [&](std::size_t i) {
        CError error = request.cancel.isRaised() ? CError(PLK_ERR_CANCELLED, "The read was cancelled.")
                                                 : decode(request, jobs[i], threadsPerJob, &(*decoded)[i]);
        if (error) {
            std::lock_guard<std::mutex> lock(errorMutex);
            if (firstError.IsSuccess())
                firstError = error;
        }
        return error.IsSuccess();
    });
    return firstError;
}

CError CodestreamReader::decode(const ReadRequest &request, const Job &job, int threads, Decoded *decoded)
{
    std::shared_ptr<const TileIndex> index;
    CError error = tileIndex(job.tile, &index);
    if (error.IsSuccess() && index->isMissing())
        error = CError(PLK_ERR_TRUNCATED, "Tile " + std::to_string(job.tile) + " is missing.");
    if (error.IsSuccess() && index->isTruncated())
        decoded->damage = "Tile " + std::to_string(job.tile) + " is incomplete.";
    if (error.IsSuccess() && index->isTruncated() && !request.resilient)
        error = CError(PLK_ERR_TRUNCATED, decoded->damage);
    if (error.IsSuccess())
        error = decodeCells(request, job, *index, threads, decoded);
    const int code = error.GetErrorNumber();
    if (error.IsSuccess() || !request.resilient || code == PLK_ERR_CANCELLED || code == PLK_ERR_READ ||
        code == PLK_ERR_FILE_CHANGED || code == PLK_ERR_OUT_OF_MEMORY || code == PLK_ERR_CONNECTION_LOST)
        return error;
    decoded->damage = error.GetErrorMessage();
    for (const int c : job.components)
        keep(request, job,
             makePlane(c, toComponent(job.levelRect, raster.components[c]), raster.components[c].sampleType), decoded);
    return {};
}

CError CodestreamReader::decodeCells(const ReadRequest &request, const Job &job, const TileIndex &index, int threads,
                                     Decoded *decoded)
{
    const auto start = std::chrono::steady_clock::now();
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
    double count = 0.0;
    for (std::size_t i = 0; i < job.components.size(); ++i) {
        const int c = job.components[i];
        const std::size_t at = isSubset ? i : std::size_t(c);
        const IntRect rect = toComponent(region, raster.components[c]);
        if (at >= cells.size() || cells[at].width != rect.width() || cells[at].height != rect.height())
            return CError(PLK_ERR_DECODE, "Tile " + std::to_string(job.tile) + " has another size than it should.");
        Plane plane = planeFromCells(c, rect, raster.components[c].sampleType, cells[at]);
        count += double(areaOf(rect));
        keep(request, job, averagedLevels > 0 ? averaged(plane, averagedLevels) : std::move(plane), decoded);
    }
    const double elapsed =
        std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() * threads;
    if (count > 10000.0)
        nanosecondsPerCell = (1.0 - kRateWeight) * nanosecondsPerCell + kRateWeight * elapsed / count;
    return {};
}

void CodestreamReader::keep(const ReadRequest &request, const Job &job, Plane plane, Decoded *decoded)
{
    const int component = plane.component;
    auto shared = std::make_shared<const Plane>(std::move(plane));
    decoded->planes.push_back(shared);
    TileCache::instance().insert(key(request, job.tile, component), std::move(shared));
}

CError CodestreamReader::tileIndex(std::uint32_t tile, std::shared_ptr<const TileIndex> *index)
{
    {
        std::lock_guard<std::mutex> lock(indexMutex);
        const auto found = indexByTile.find(tile);
        if (found != indexByTile.end()) {
            indexEntries.splice(indexEntries.begin(), indexEntries, found->second);
            *index = found->second->index;
            return {};
        }
    }
    // Two threads may read the same index at once; that costs less than making one wait.
    if (CError error = TileIndex::read(*source, *header, table, tile, index))
        return error;
    std::lock_guard<std::mutex> lock(indexMutex);
    if (indexByTile.count(tile))
        return {};
    indexEntries.push_front({tile, *index});
    indexByTile[tile] = indexEntries.begin();
    indexBytes += (*index)->memoryUse();
    while (indexBytes > kIndexBudget && indexEntries.size() > 1) {
        indexBytes -= indexEntries.back().index->memoryUse();
        indexByTile.erase(indexEntries.back().tile);
        indexEntries.pop_back();
    }
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
