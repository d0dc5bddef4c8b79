#include "codeblockpath.h"

#include "codestream/canvas.h"
#include "decode/threads/parallel.h"
#include "decode/tile/tilesynthesis.h"
#include "decode/transform/rectset.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

/// Size of the pieces in which code-blocks are put together, cells.
constexpr std::int64_t kPieceWidth = 512, kPieceHeight = 256;
/// Coefficients that are decoded before they are put together.
constexpr std::int64_t kMaxCellsPerBatch = 24 << 20;
/// Exponent of the side of the parts in which larger jobs are decoded, in cells, and of the code-blocks in a part: many
/// tiny ones take more memory than their cells.
constexpr int kPartSide = 12, kCodeBlocksOfPart = 16;
/// What a code-block takes besides its cells, in cells.
constexpr std::int64_t kCellsOfCodeBlock = 256;

/// Decomposition levels that all of \a components have.
int minLevels(const TileIndex &index, const std::vector<int> &components)
{
    int levels = 32;
    for (const int c : components)
        levels = std::min(levels, index.style().components[c].decompositionLevels);
    return levels;
}

/// Exponent of the area of the smallest code-blocks that \a style can have: precincts cut them (ISO/IEC 15444-1 B.7).
int smallestCodeBlocks(const ComponentStyle &style)
{
    int width = style.codeBlockWidthExponent, height = style.codeBlockHeightExponent;
    for (int r = 0; r <= style.decompositionLevels; ++r) {
        width = std::min(width, style.precinctWidthExponent(r) - (r > 0 ? 1 : 0));
        height = std::min(height, style.precinctHeightExponent(r) - (r > 0 ? 1 : 0));
    }
    return width + height;
}

/// The parts of a job that are decoded one after the other, \a averagedLevels above a resolution of the tile.
std::vector<IntRect> partsOf(const DecodeJob &job, const TileIndex &index, int averagedLevels)
{
    const int area = smallestCodeBlocks(index.style().components[job.components.front()]);
    const int side = std::min(kPartSide, (kCodeBlocksOfPart + area) / 2);
    const std::int64_t most = std::min(kMaxCellsPerBatch, std::int64_t(2) << (2 * side));
    if (areaOf(job.levelRect) <= most >> std::min(2 * averagedLevels, 62))
        return {job.levelRect};
    const std::int64_t sideOfLevel = std::int64_t(1) << std::max(0, side - averagedLevels);
    return inPieces(job.levelRect, sideOfLevel, sideOfLevel);
}

} // namespace

struct CodeBlockPath::Batch
{
    /// A piece of a job that is put together in one go.
    struct Piece
    {
        std::size_t job;
        std::size_t request;
        int discarded;  ///< resolutions left out
        IntRect region; ///< on the canvas of the coded level
    };
    /// The part of a job that a request is made for.
    struct Part
    {
        std::size_t job;
        IntRect levelRect;
    };
    std::vector<CodeBlockRequest> requests;
    std::vector<Part> parts; ///< by request
    std::vector<Piece> pieces;
    std::int64_t cells = 0;

    bool isFull() const { return cells >= kMaxCellsPerBatch; }
};

CodeBlockPath::CodeBlockPath(std::shared_ptr<ByteSource> source, const MainHeader &header, const RasterInfo &raster,
                             std::uint64_t fileNumber)
    : header(header)
    , raster(raster)
    , codeBlocks(std::move(source), header, fileNumber)
{
}

CError CodeBlockPath::decode(RasterRead *read)
{
    Batch batch;
    for (std::size_t job = 0; job < read->jobs().size() && !read->cancel().isRaised(); ++job) {
        const TileIndex &index = *read->index(job);
        if (index.isMissing())
            continue;
        if (CError error = TileSynthesis::check(header, tileOf(*read, job)))
            return error;
        if (index.isTruncated())
            if (CError error = read->settle(job, incompleteTile(read->jobs()[job].tile)))
                return error;
        for (const IntRect &part : partsOf(read->jobs()[job], index, averagedLevels(*read, job))) {
            add(*read, job, part, &batch);
            if (!batch.isFull())
                continue;
            if (CError error = decodeBatch(read, batch))
                return error;
            batch = Batch();
        }
    }
    return decodeBatch(read, batch);
}

TileToDecode CodeBlockPath::tileOf(const RasterRead &read, std::size_t job)
{
    const TileIndexStore::TileIndexPtr &index = read.index(job);
    return {read.jobs()[job].tile, index, std::min(read.layers(), index->packets().layers())};
}

/// Levels of the read's beyond those that the tile of a job has.
int CodeBlockPath::averagedLevels(const RasterRead &read, std::size_t job)
{
    const int level = read.request().level;
    return level - std::min(level, minLevels(*read.index(job), read.jobs()[job].components));
}

CError CodeBlockPath::prefetch(std::deque<RasterRead> *reads, const CancelFlag &cancel)
{
    Batch batch;
    for (RasterRead &read : *reads)
        for (std::size_t job = 0; job < read.jobs().size() && !batch.isFull(); ++job)
            if (!read.index(job)->isMissing())
                add(read, job, partsOf(read.jobs()[job], *read.index(job), averagedLevels(read, job)).front(), &batch);
    return codeBlocks.prefetch(batch.requests, cancel);
}

void CodeBlockPath::add(const RasterRead &read, std::size_t number, const IntRect &part, Batch *batch) const
{
    const DecodeJob &job = read.jobs()[number];
    const TileIndexStore::TileIndexPtr &index = read.index(number);
    const int averaged = averagedLevels(read, number);
    const int discarded = read.request().level - averaged;
    const IntRect region = scaledUp(part, averaged).intersected(levelRect(index->rect(), discarded));
    CodeBlockRequest request{tileOf(read, number), {}, read.request().isKept};
    for (const int c : job.components) {
        const IntRect rect = raster.components[c].fromCanvas(region);
        if (rect.isEmpty() || read.cancel().isRaised())
            continue;
        const std::vector<CodeBlockPlace> places = codeBlocksFor(componentRect(index->rect(), header.components[c]),
                                                                 index->style().components[c], c, discarded, rect);
        request.codeBlocks.insert(request.codeBlocks.end(), places.begin(), places.end());
        batch->cells += areaOf(rect) + kCellsOfCodeBlock * static_cast<std::int64_t>(places.size());
    }
    // Cut where averaged cells begin.
    for (const IntRect &piece : inPieces(part, std::max<std::int64_t>(1, kPieceWidth >> averaged),
                                         std::max<std::int64_t>(1, kPieceHeight >> averaged)))
        batch->pieces.push_back(
            {number, batch->requests.size(), discarded, scaledUp(piece, averaged).intersected(region)});
    batch->requests.push_back(std::move(request));
    batch->parts.push_back({number, part});
}

CError CodeBlockPath::decodeBatch(RasterRead *read, const Batch &batch)
{
    std::vector<CodeBlockSet> sets;
    std::string damage;
    if (CError error = codeBlocks.fetch(batch.requests, read->damagePolicy(), read->cancel(), &sets, &damage))
        return error;
    for (std::size_t i = 0; i < batch.parts.size() && !read->cancel().isRaised(); ++i)
        if (sets[i].isEmpty())
            keepBlank(read, batch.parts[i].job, batch.parts[i].levelRect, damage);
    return runAll(batch.pieces.size(), read->cancel(), [&](std::size_t i) {
        const Batch::Piece &piece = batch.pieces[i];
        const TileSynthesis synthesis(header, batch.requests[piece.request].tile);
        const std::vector<int> &components = read->jobs()[piece.job].components;
        if (sets[piece.request].isEmpty())
            return CError();
        for (Plane &plane :
             synthesis.planes(sets[piece.request], components, piece.discarded, piece.region, read->cancel()))
            read->keep(piece.job, std::move(plane), read->request().level - piece.discarded);
        read->noteDamage(piece.job, damage);
        return read->cancel().isRaised() ? CError(PLK_ERR_CANCELLED, "The read was cancelled.") : CError();
    });
}

/// What no code-block has data for need not be put together.
void CodeBlockPath::keepBlank(RasterRead *read, std::size_t number, const IntRect &part,
                              const std::string &damage) const
{
    const DecodeJob &job = read->jobs()[number];
    const TileToDecode tile = tileOf(*read, number);
    const TileSynthesis synthesis(header, tile);
    for (const int c : job.components)
        read->keep(number, synthesis.blank(c, raster.components[c].fromCanvas(part)), 0);
    read->noteDamage(number, damage);
}

} // namespace xrv
