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

/// Decomposition levels that all of \a components have.
int minLevels(const TileIndex &index, const std::vector<int> &components)
{
    int levels = 32;
    for (const int c : components)
        levels = std::min(levels, index.style().components[c].decompositionLevels);
    return levels;
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
    std::vector<CodeBlockRequest> requests;
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
    for (std::size_t next = 0; next < read->jobs().size();) {
        Batch batch;
        for (; next < read->jobs().size() && !batch.isFull(); ++next)
            if (!read->index(next)->isMissing())
                if (CError error = add(read, next, &batch))
                    return error;
        if (CError error = decodeBatch(read, batch))
            return error;
    }
    return {};
}

CError CodeBlockPath::prefetch(std::deque<RasterRead> *reads, const CancelFlag &cancel)
{
    Batch batch;
    for (RasterRead &read : *reads)
        for (std::size_t job = 0; job < read.jobs().size() && !batch.isFull(); ++job)
            if (!read.index(job)->isMissing())
                add(&read, job, &batch); // damage is told when it is read
    return codeBlocks.prefetch(batch.requests, cancel);
}

CError CodeBlockPath::add(RasterRead *read, std::size_t number, Batch *batch) const
{
    const DecodeJob &job = read->jobs()[number];
    const TileIndexStore::TileIndexPtr &index = read->index(number);
    const TileToDecode tile{job.tile, index, std::min(read->layers(), index->packets().layers())};
    if (CError error = TileSynthesis::check(header, tile))
        return error;
    if (index->isTruncated())
        if (CError error = read->settle(number, incompleteTile(job.tile)))
            return error;
    const int level = read->request().level;
    const int discarded = std::min(level, minLevels(*index, job.components));
    const int averagedLevels = level - discarded;
    const IntRect region = scaledUp(job.levelRect, averagedLevels).intersected(levelRect(index->rect(), discarded));
    CodeBlockRequest request{tile, {}, read->request().isKept};
    for (const int c : job.components) {
        const IntRect rect = raster.components[c].fromCanvas(region);
        if (rect.isEmpty())
            continue;
        const std::vector<CodeBlockPlace> places = codeBlocksFor(componentRect(index->rect(), header.components[c]),
                                                                 index->style().components[c], c, discarded, rect);
        request.codeBlocks.insert(request.codeBlocks.end(), places.begin(), places.end());
        batch->cells += areaOf(rect);
    }
    // Cut where averaged cells begin.
    for (const IntRect &piece : inPieces(job.levelRect, std::max<std::int64_t>(1, kPieceWidth >> averagedLevels),
                                         std::max<std::int64_t>(1, kPieceHeight >> averagedLevels)))
        batch->pieces.push_back(
            {number, batch->requests.size(), discarded, scaledUp(piece, averagedLevels).intersected(region)});
    batch->requests.push_back(std::move(request));
    return {};
}

CError CodeBlockPath::decodeBatch(RasterRead *read, const Batch &batch)
{
    std::vector<CodeBlockSet> sets;
    std::string damage;
    if (CError error = codeBlocks.fetch(batch.requests, read->damagePolicy(), read->cancel(), &sets, &damage))
        return error;
    return runAll(batch.pieces.size(), read->cancel(), [&](std::size_t i) {
        const Batch::Piece &piece = batch.pieces[i];
        const TileSynthesis synthesis(header, batch.requests[piece.request].tile);
        const std::vector<int> &components = read->jobs()[piece.job].components;
        for (Plane &plane : synthesis.planes(sets[piece.request], components, piece.discarded, piece.region))
            read->keep(piece.job, std::move(plane), read->request().level - piece.discarded);
        read->noteDamage(piece.job, damage);
        return CError();
    });
}

} // namespace xrv
