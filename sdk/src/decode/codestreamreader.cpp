#include "codestreamreader.h"

#include <algorithm>
#include <chrono>
#include <cmath>

using PLK::CError;

namespace xrv {

CodestreamReader::CodestreamReader(const std::shared_ptr<ByteSource> &source, ByteRange codestream,
                                   std::unique_ptr<MainHeader> mainHeader)
    : source(source)
    , header(std::move(mainHeader))
    , raster(describeRaster(*header))
    , fileNumber(TileCache::instance().fileNumber(source->identity()))
    , rate(raster, codestream.length, source->isRemote())
    , planner(*header, raster, fileNumber)
    , indexes(source, codestream, *header)
    , byCodeBlocks(source, *header, raster, fileNumber)
{
    TileCache::instance().addReader(fileNumber);
}

CodestreamReader::~CodestreamReader()
{
    TileCache::instance().removeReader(fileNumber);
}

ReadCost CodestreamReader::cost(const ReadRequest &request)
{
    const DecodePlan plan = planner.plan(request);
    const int averagedLevels = std::max(0, request.level - (raster.codedLevels - 1));
    const double cells = std::ldexp(plan.cellsToDecode(), 2 * averagedLevels);
    return {plan.cacheTiles, plan.cacheTilesReady, rate.milliseconds(cells, plan.jobs.size())};
}

CError CodestreamReader::read(const ReadRequest &request, ReadResult *result)
{
    RasterRead read(request, raster, planner);
    if (CError error = decode(&read))
        return error;
    *result = read.result();
    return request.cancel.isRaised() ? CError(PLK_ERR_CANCELLED, "The read was cancelled.") : CError();
}

CError CodestreamReader::decode(RasterRead *read)
{
    if (read->cancel().isRaised())
        return {PLK_ERR_CANCELLED, "The read was cancelled."};
    if (read->jobs().empty())
        return {};
    const auto start = std::chrono::steady_clock::now();
    if (CError error = read->loadIndexes(indexes))
        return error;
    if (CError error = byCodeBlocks.decode(read))
        return error;
    if (CError error = fillMissing(read))
        return error;
    const std::chrono::duration<double, std::nano> elapsed = std::chrono::steady_clock::now() - start;
    rate.learn(read->cellsToDecode(), elapsed.count());
    return {};
}

/// The jobs whose tiles are not in the file.
CError CodestreamReader::fillMissing(RasterRead *read)
{
    for (std::size_t i = 0; i < read->jobs().size(); ++i) {
        const DecodeJob &job = read->jobs()[i];
        if (!read->index(i)->isMissing())
            continue;
        if (read->cancel().isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        if (CError error = read->settleAsZeros(i, job.levelRect, missingTile(job.tile)))
            return error;
    }
    return {};
}

CError CodestreamReader::prefetch(const std::vector<ReadRequest> &requests)
{
    if (!source->isRemote() || requests.size() < 2)
        return {};
    std::deque<RasterRead> reads;
    for (const ReadRequest &request : requests)
        reads.emplace_back(request, raster, planner);
    if (CError error = prefetchIndexes(reads))
        return error;
    for (RasterRead &read : reads)
        if (CError error = read.loadIndexes(indexes))
            return error;
    return byCodeBlocks.prefetch(&reads, requests.front().cancel);
}

/// All tiles of all reads at once.
CError CodestreamReader::prefetchIndexes(const std::deque<RasterRead> &reads)
{
    std::vector<std::uint32_t> tiles;
    int lowestLevel = reads.front().request().level;
    for (const RasterRead &read : reads) {
        lowestLevel = std::min(lowestLevel, read.request().level);
        for (const DecodeJob &job : read.jobs())
            tiles.push_back(job.tile);
    }
    std::sort(tiles.begin(), tiles.end());
    std::vector<TileIndexStore::TileIndexPtr> ignored;
    return indexes.load(tiles, lowestLevel, reads.front().cancel(), &ignored);
}

void CodestreamReader::dropCached()
{
    TileCache::instance().drop(fileNumber);
}

} // namespace xrv
