#pragma once

#include "base/plane.h"

#include <cstdint>
#include <vector>

namespace xrv {

struct MainHeader;

/// A component of the codestream.
struct ComponentInfo
{
    std::uint8_t bits = 8; ///< at most kMaxSampleBits
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
                    ///< that the codestream's resolutions and averaging can give
    int codedLevels = 0; ///< of these, the first codedLevels come from the codestream's resolutions
    int qualityLayers = 1;
    bool isLossless = false;

    /// Cells of component \a c at \a level, component level coordinates.
    IntRect levelRect(int component, int level) const;
};

/// What a codestream's main header says of its image.
RasterInfo describeRaster(const MainHeader &header);

} // namespace xrv
