#pragma once

#include "../codestream/tileindex.h"
#include "rasterreader.h"
#include "tilecache.h"

#include <atomic>
#include <list>
#include <mutex>
#include <unordered_map>

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
        bool isWholeTile = false;
    };
    /// What a request comes down to.
    struct Plan
    {
        std::vector<IntRect> wanted; ///< per requested component, component level coordinates
        std::vector<TileCache::PlanePtr> cached;
        std::vector<Job> jobs;
        std::uint64_t tiles = 0, tilesCached = 0;
    };
    struct Decoded
    {
        std::vector<TileCache::PlanePtr> planes;
        std::string damage;
    };

    void describe();
    IntRect wantedRect(const ReadRequest &request, int component) const;
    Plan plan(const ReadRequest &request);
    void planTile(const ReadRequest &request, std::uint32_t tile, Plan *plan);
    void addJobs(const ReadRequest &request, std::uint32_t tile, std::vector<IntRect> missing,
                 const std::vector<int> &components, bool isFirst, Plan *plan) const;
    std::vector<int> withTransformPartners(std::vector<int> components) const;
    TileCache::Key key(const ReadRequest &request, std::uint32_t tile, int component) const;

    PLK::CError runJobs(const ReadRequest &request, const std::vector<Job> &jobs, std::vector<Decoded> *decoded);
    PLK::CError decode(const ReadRequest &request, const Job &job, int threads, Decoded *decoded);
    PLK::CError decodeCells(const ReadRequest &request, const Job &job, const TileIndex &index, int threads,
                            Decoded *decoded);
    void keep(const ReadRequest &request, const Job &job, Plane plane, Decoded *decoded);
    PLK::CError tileIndex(std::uint32_t tile, std::shared_ptr<const TileIndex> *index);

    std::shared_ptr<ByteSource> source;
    ByteRange codestream;
    std::unique_ptr<MainHeader> header;
    TilePartTable table;
    RasterInfo raster;
    std::uint64_t fileNumber;
    std::atomic<double> nanosecondsPerCell; ///< measured, one core

    struct IndexEntry
    {
        std::uint32_t tile;
        std::shared_ptr<const TileIndex> index;
    };
    std::mutex indexMutex;              ///< guards the index cache
    std::list<IndexEntry> indexEntries; ///< most recently used first
    std::unordered_map<std::uint32_t, std::list<IndexEntry>::iterator> indexByTile;
    std::size_t indexBytes = 0;
};

} // namespace xrv
