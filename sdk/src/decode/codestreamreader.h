#pragma once

#include "../codestream/tileindex.h"
#include "blockstore.h"
#include "bytebudgetmap.h"
#include "rasterreader.h"
#include "tilecache.h"

#include <atomic>
#include <mutex>

namespace xrv {

/// RasterReader of a JPEG 2000 codestream: plans which pieces of which tiles are missing in the cache, decodes them in
/// parallel and puts the answer together.
class CodestreamReader : public RasterReader
{
public:
    CodestreamReader(std::shared_ptr<ByteSource> source, ByteRange codestream, std::unique_ptr<MainHeader> header);

    const RasterInfo &info() const override { return raster; }
    const MainHeader &mainHeader() const override { return *header; }
    ReadCost cost(const ReadRequest &request) override;
    PLK::CError read(const ReadRequest &request, ReadResult *result) override;
    void dropCached() override;

private:
    /// A piece of a tile that has to be decoded.
    struct Job
    {
        std::uint32_t tile = 0;
        IntRect levelRect;           ///< on the level's canvas
        std::vector<int> components; ///< ascending
    };
    /// What a request comes down to.
    struct Plan
    {
        std::vector<IntRect> wanted; ///< per requested component, component level coordinates
        std::vector<TileCache::PlanePtr> cached;
        std::vector<Job> jobs; ///< by tile
        std::uint64_t tiles = 0, tilesCached = 0;
    };
    struct Decoded
    {
        std::vector<TileCache::PlanePtr> planes;
        std::string damage;
    };
    using TileIndexPtr = std::shared_ptr<const TileIndex>;

    void describe();
    IntRect wantedRect(const ReadRequest &request, int component) const;
    int layersOf(const ReadRequest &request) const;
    Plan plan(const ReadRequest &request);
    void planTile(const ReadRequest &request, std::uint32_t tile, Plan *plan);
    void addJobs(const ReadRequest &request, std::uint32_t tile, const std::vector<std::vector<IntRect>> &missing,
                 const std::vector<int> &components, Plan *plan) const;
    std::vector<int> withTransformPartners(std::vector<int> components) const;
    TileCache::Key key(const ReadRequest &request, std::uint32_t tile, int component) const;

    PLK::CError decodeAll(const ReadRequest &request, const std::vector<Job> &jobs, std::vector<Decoded> *decoded);
    PLK::CError loadIndexes(const ReadRequest &request, const std::vector<Job> &jobs,
                            std::vector<TileIndexPtr> *indexes);
    PLK::CError decodeByBlocks(const ReadRequest &request, const std::vector<Job> &jobs,
                               const std::vector<TileIndexPtr> &indexes, std::vector<Decoded> *decoded);
    PLK::CError decodeWhole(const ReadRequest &request, const Job &job, const TileIndex &index, int threads,
                            Decoded *decoded);
    PLK::CError decodeCells(const ReadRequest &request, const Job &job, const TileIndex &index, int threads,
                            Decoded *decoded);
    /// Decides what an error of a tile means: nothing cells with a note of the damage, or the end of the read.
    PLK::CError settle(const ReadRequest &request, const Job &job, PLK::CError error, Decoded *decoded);
    void keep(const ReadRequest &request, const Job &job, Plane plane, int averagedLevels, Decoded *decoded);
    PLK::CError tileIndex(std::uint32_t tile, TileIndexPtr *index);

    std::shared_ptr<ByteSource> source;
    ByteRange codestream;
    std::unique_ptr<MainHeader> header;
    TilePartTable table;
    RasterInfo raster;
    std::uint64_t fileNumber;
    std::atomic<double> nanosecondsPerCell; ///< measured, one core

    ByteBudgetMap<std::uint32_t, TileIndex> indexes;
    BlockStore blocks;
};

} // namespace xrv
