#pragma once

#include "rasterreader.h"

#include "codestream/mainheader.h"
#include "decode/cache/tilecache.h"

#include <vector>

namespace xrv {

/// A piece of a tile that has to be decoded.
struct DecodeJob
{
    std::uint32_t tile = 0;
    IntRect levelRect;           ///< on the level's canvas
    std::vector<int> components; ///< ascending
};

/// What a request comes down to.
struct DecodePlan
{
    std::vector<IntRect> wanted; ///< per requested component, component level coordinates
    std::vector<TileCache::PlanePtr> cached;
    std::vector<DecodeJob> jobs;                       ///< by tile
    std::uint64_t cacheTiles = 0, cacheTilesReady = 0; ///< see ReadCost

    /// Of all components, at the level.
    double cellsToDecode() const;
};

/// Adds to \a components what the component transformation of \a style needs together with
/// them (ISO/IEC 15444-1 G.2, G.3). They come out ascending.
void addTransformPartners(const TileStyle &style, std::vector<int> *components);

/// Finds out what of a request is in the tile cache and which pieces of which tiles have to be decoded. Any thread.
class DecodePlanner
{
public:
    DecodePlanner(const MainHeader &header, const RasterInfo &raster, std::uint64_t fileNumber)
        : header(header)
        , raster(raster)
        , fileNumber(fileNumber)
    {
    }

    /// Once the request's flag is raised the plan may lack tiles.
    DecodePlan plan(const ReadRequest &request) const;
    /// Quality layers to decode, 1 and up.
    int layersOf(const ReadRequest &request) const;
    /// Key of a component's samples in the tile cache.
    TileCache::Key key(const ReadRequest &request, std::uint32_t tile, int component) const;

private:
    IntRect wantedRect(const ReadRequest &request, int component) const;
    void planTile(const ReadRequest &request, std::uint32_t tile, DecodePlan *plan) const;
    void addJobs(const ReadRequest &request, std::uint32_t tile, const std::vector<std::vector<IntRect>> &missing,
                 const std::vector<int> &components, DecodePlan *plan) const;

    const MainHeader &header;
    const RasterInfo &raster;
    const std::uint64_t fileNumber;
};

} // namespace xrv
