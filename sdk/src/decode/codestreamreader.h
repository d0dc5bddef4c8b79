#pragma once

#include "blockstore.h"
#include "decodeplanner.h"
#include "rasterreader.h"
#include "tileindexstore.h"

#include "decode/cache/tilecache.h"

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
    PLK::CError prefetch(const std::vector<ReadRequest> &requests) override;
    void dropCached() override;

private:
    struct Decoded
    {
        std::vector<TileCache::PlanePtr> planes;
        std::string damage;
    };
    /// Jobs whose blocks are decoded before they are put together.
    struct Batch;
    using TileIndexPtr = TileIndexStore::TileIndexPtr;

    void describe();

    PLK::CError decodeAll(const ReadRequest &request, const std::vector<DecodeJob> &jobs,
                          std::vector<Decoded> *decoded);
    PLK::CError prefetchIndexes(const std::vector<ReadRequest> &requests, const std::vector<DecodePlan> &plans);
    PLK::CError loadIndexes(const ReadRequest &request, const std::vector<DecodeJob> &jobs,
                            std::vector<TileIndexPtr> *indexes);
    PLK::CError decodeByBlocks(const ReadRequest &request, const std::vector<DecodeJob> &jobs,
                               const std::vector<TileIndexPtr> &indexes, std::vector<Decoded> *decoded);
    PLK::CError addToBatch(const ReadRequest &request, const std::vector<DecodeJob> &jobs, std::size_t job,
                           const TileIndexPtr &index, Batch *batch, Decoded *decoded) const;
    PLK::CError decodeBatch(const ReadRequest &request, const std::vector<DecodeJob> &jobs, const Batch &batch,
                            std::vector<Decoded> *decoded);
    PLK::CError decodeWhole(const ReadRequest &request, const DecodeJob &job, const TileIndex &index, Decoded *decoded);
    PLK::CError decodeCells(const ReadRequest &request, const DecodeJob &job, const TileIndex &index, Decoded *decoded);
    /// Decides what an error of a tile means: nothing cells with a note of the damage, or the end of the read.
    PLK::CError settle(const ReadRequest &request, const DecodeJob &job, PLK::CError error, Decoded *decoded);
    void keep(const ReadRequest &request, const DecodeJob &job, Plane plane, int averagedLevels, Decoded *decoded);

    std::shared_ptr<ByteSource> source;
    ByteRange codestream;
    std::unique_ptr<MainHeader> header;
    RasterInfo raster;
    std::uint64_t fileNumber;
    DecodePlanner planner;
    std::atomic<double> nanosecondsPerCell; ///< measured, one core

    TileIndexStore indexes;
    BlockStore blocks;
};

} // namespace xrv
