#include "openjpegpath.h"

#include "decode/openjpeg/openjpegdecoder.h"
#include "decode/threads/parallel.h"
#include "decode/transform/rectset.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

/// Cells of one component that OpenJPEG decodes in one piece at most; bounds what it needs at a time.
constexpr std::int64_t kMaxCellsPerPiece = 4 << 20;
constexpr std::int64_t kPieceSide = 2048;
/// OpenJPEG 2.5.0 decodes parts of tiles with high-throughput code-blocks wrongly, so they are decoded whole, up to
/// this many cells of all components together.
constexpr std::int64_t kMaxHighThroughputCells = std::int64_t(192) << 20;

} // namespace

CError OpenJpegPath::decode(RasterRead *read, const std::vector<std::size_t> &jobs)
{
    return runAll(jobs.size(), read->cancel(), [&](std::size_t i) { return decodeJob(read, jobs[i]); });
}

CError OpenJpegPath::decodeJob(RasterRead *read, std::size_t job)
{
    if (read->index(job)->isTruncated())
        if (CError error = read->settle(job, incompleteTile(read->jobs()[job].tile)))
            return error;
    std::vector<IntRect> pieces;
    if (CError error = piecesOf(*read, job, &pieces))
        return error;
    for (const IntRect &piece : pieces) {
        if (read->cancel().isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        if (CError error = read->settleAsZeros(job, piece, decodeCells(read, job, piece)))
            return error;
    }
    return {};
}

/// The parts of a job's levelRect that are decoded one after the other.
CError OpenJpegPath::piecesOf(const RasterRead &read, std::size_t number, std::vector<IntRect> *pieces) const
{
    const DecodeJob &job = read.jobs()[number];
    const TileIndex &index = *read.index(number);
    const int level = read.request().level;
    const int averagedLevels = level - std::min(level, index.style().minDecompositionLevels());
    const std::int64_t side = std::max<std::int64_t>(1, kPieceSide >> averagedLevels);
    const IntRect rect = header.isHighThroughput ? levelRect(index.rect(), level) : job.levelRect;
    const std::int64_t cells = areaOf(rect) << (2 * averagedLevels);
    if (header.isHighThroughput && cells * std::int64_t(job.components.size()) > kMaxHighThroughputCells)
        return {PLK_ERR_UNSUPPORTED, "The tiles of this high-throughput image are too large to be decoded."};
    const bool isSmall = header.isHighThroughput || cells <= kMaxCellsPerPiece;
    *pieces = isSmall ? std::vector<IntRect>{rect} : inPieces(rect, side, side);
    return {};
}

CError OpenJpegPath::decodeCells(RasterRead *read, std::size_t number, const IntRect &rect)
{
    const DecodeJob &job = read->jobs()[number];
    const TileIndex &index = *read->index(number);
    const std::string tileName = "Tile " + std::to_string(job.tile);
    const int level = read->request().level;
    const int discarded = std::min(level, index.style().minDecompositionLevels());
    const IntRect codedTile = levelRect(index.rect(), discarded);
    const IntRect region = scaledUp(rect, level - discarded).intersected(codedTile);
    if (region.isEmpty())
        return {};
    TileCodestream small;
    if (CError error = makeTileCodestream(*source, header, index,
                                          {job.components, discarded, read->request().qualityLayers, region},
                                          read->cancel(), &small))
        return error;

    OpenJpegRequest decode;
    decode.codestream = &small;
    decode.isWholeTile = region == codedTile;
    decode.area =
        scaledUp(region, small.levelsToDiscard).intersected(levelRect(index.rect(), discarded - small.levelsToDiscard));
    const bool hasTransform = index.style().multipleComponentTransform && job.components.front() <= 2;
    if (small.hasAllComponents && !hasTransform && job.components.size() < header.components.size())
        decode.components = job.components;
    std::vector<DecodedComponent> cells;
    if (CError error = decodeWithOpenJpeg(decode, &cells))
        return {error.GetErrorNumber(), tileName + " cannot be decoded: " + error.GetErrorMessage()};

    const bool isSubset = cells.size() == job.components.size();
    for (std::size_t i = 0; i < job.components.size(); ++i) {
        const int c = job.components[i];
        const std::size_t at = isSubset ? i : std::size_t(c);
        const IntRect own = raster.components[c].fromCanvas(region);
        if (at >= cells.size() || cells[at].width != own.width() || cells[at].height != own.height())
            return {PLK_ERR_DECODE, tileName + " has another size than it should."};
        read->keep(number, planeFromCells(c, own, raster.components[c].sampleType, cells[at]), level - discarded);
    }
    return {};
}

} // namespace xrv
