#pragma once

#include "rasterinfo.h"

#include "base/cancelflag.h"
#include "base/plane.h"
#include "io/bytesource.h"

#include <xrv60/plkerror.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace xrv {

/// What to read.
struct ReadRequest
{
    IntRect datasetRect; ///< clipped to the image by the reader
    int level = 0;
    std::vector<int> components;
    int qualityLayers = 0; ///< 0 = all
    bool resilient = true;
    CancelFlag cancel;
    int margin = 1;     ///< cells that are read around the rectangle as well, for who interpolates
    bool isKept = true; ///< what is decoded goes to the tile cache: it may be asked for again
};

/// Answer to a ReadRequest: one plane per requested component, in the order asked for.
struct ReadResult
{
    std::vector<Plane> planes;
    bool damaged = false; ///< some cells could not be decoded and are 0
    std::string damage;   ///< a sentence about the first of them
};

/// What a read would cost.
struct ReadCost
{
    std::uint64_t cacheTiles = 0;      ///< that the answer is made of: a tile of the codestream at the level, each
    std::uint64_t cacheTilesReady = 0; ///< of these, in the cache with all that is wanted of them
    double milliseconds = 0.0;         ///< estimate for the rest, all cores
};

/// An open codestream that gives decoded cells of any rectangle at any level. Decodes in parallel, through the tile
/// cache that all readers share. All operations may be called from any thread.
class RasterReader
{
public:
    virtual ~RasterReader() = default;

    /// Reads the codestream's index; \a codestream is its place in \a source, \a packetIndex that of the content of a
    /// packet index (empty without). One that does not fit the codestream is not used.
    static PLK::CError open(const std::shared_ptr<ByteSource> &source, ByteRange codestream,
                            std::unique_ptr<RasterReader> *reader, ByteRange packetIndex = {});

    virtual const RasterInfo &info() const = 0;
    /// The codestream's main header.
    virtual const MainHeader &mainHeader() const = 0;
    virtual ReadCost cost(const ReadRequest &request) = 0;
    /// PLK_ERR_CANCELLED when the request's flag was raised. Without resilience damage is PLK_ERR_DECODE or
    /// PLK_ERR_TRUNCATED. \a result is undefined on failure.
    virtual PLK::CError read(const ReadRequest &request, ReadResult *result) = 0;
    /// Says that all of \a requests will be read soon: has a distant source fetch what they need together. Costs
    /// nothing where the source is near. Errors are those of the source.
    virtual PLK::CError prefetch(const std::vector<ReadRequest> & /*requests*/) { return {}; }
    /// Drops this file's entries from the tile cache, unless somebody else reads it too.
    virtual void dropCached() = 0;
};

} // namespace xrv
