#pragma once

#include "base/cancelflag.h"
#include "base/plane.h"
#include "io/bytesource.h"

#include <xrv60/plkerror.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace xrv {

struct MainHeader;

/// A component of the codestream.
struct ComponentInfo
{
    std::uint8_t bits = 8;
    bool isSigned = false;
    std::uint32_t stepX = 1, stepY = 1; ///< XRsiz, YRsiz
    SampleType sampleType = SampleType::UInt8;

    /// The cells of this component in a part of the canvas, and the part of the canvas that such cells stand for.
    IntRect fromCanvas(const IntRect &canvas) const { return everyNth(canvas, stepX, stepY); }
    IntRect toCanvas(const IntRect &cells) const
    {
        return {cells.x0 * stepX, cells.y0 * stepY, cells.x1 * stepX, cells.y1 * stepY};
    }
};

/// Size and structure of the image.
///
/// Dataset coordinates: cells of the finest component (smallest XRsiz, YRsiz), (0, 0) at the image's top left.
/// Component level coordinates at level L (0 = full resolution): cells of one component of which every 2^L-th is left,
/// counted from the origin of the codestream's canvas, as ISO/IEC 15444-1 B.5 does.
struct RasterInfo
{
    std::uint32_t width = 0, height = 0;                                  ///< dataset size
    std::uint32_t canvasX0 = 0, canvasY0 = 0, canvasX1 = 0, canvasY1 = 0; ///< XOsiz, YOsiz, Xsiz, Ysiz
    std::uint32_t minStepX = 1, minStepY = 1;                             ///< XRsiz, YRsiz of the finest component
    std::vector<ComponentInfo> components;
    std::uint32_t tileWidth = 0, tileHeight = 0; ///< XTsiz, YTsiz
    std::uint32_t tilesAcross = 0, tilesDown = 0;
    int levels = 0; ///< levels 0..levels-1 can be read; the last one is no larger than about 64 cells across or all
                    ///< that the codestream's resolutions and averaging of blocks can give
    int codedLevels = 0; ///< of these, the first codedLevels come from the codestream's resolutions
    int qualityLayers = 1;
    bool isLossless = false;

    /// Cells of component \a c at \a level, component level coordinates.
    IntRect levelRect(int component, int level) const;
};

/// What to read.
struct ReadRequest
{
    IntRect datasetRect; ///< clipped to the image by the reader
    int level = 0;
    std::vector<int> components;
    int qualityLayers = 0; ///< 0 = all
    bool resilient = true;
    CancelFlag cancel;
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
    std::uint64_t blocks = 0;       ///< cache tiles that the answer is made of
    std::uint64_t blocksCached = 0; ///< of these, in the cache
    double milliseconds = 0.0;      ///< estimate for the rest, all cores
};

/// An open codestream that gives decoded cells of any rectangle at any level. Decodes in parallel, through the tile
/// cache that all readers share. All operations may be called from any thread.
class RasterReader
{
public:
    virtual ~RasterReader() = default;

    /// Reads the codestream's index; \a codestream is its place in \a source, \a packetIndex that of the content of a
    /// packet index (empty without). One that does not fit the codestream is not used.
    static PLK::CError open(std::shared_ptr<ByteSource> source, ByteRange codestream,
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
    /// Drops this file's entries from the tile cache.
    virtual void dropCached() = 0;
};

} // namespace xrv
