#include "rasterinfo.h"

#include "codestream/mainheader.h"

#include <algorithm>

namespace xrv {

namespace {

/// Levels go on until the longer side is no longer than this.
constexpr std::uint32_t kSmallestLevel = 64;
constexpr int kMaxLevels = 32;

void describeComponents(const MainHeader &header, RasterInfo *raster)
{
    raster->minStepX = raster->minStepY = 255;
    raster->isLossless = true;
    for (std::size_t c = 0; c < header.components.size(); ++c) {
        const MainHeader::Component &component = header.components[c];
        const auto bits = std::min<std::uint8_t>(component.bits, kMaxSampleBits);
        raster->components.push_back(
            {bits, component.isSigned, component.stepX, component.stepY, sampleTypeFor(bits, component.isSigned)});
        raster->minStepX = std::min<std::uint32_t>(raster->minStepX, component.stepX);
        raster->minStepY = std::min<std::uint32_t>(raster->minStepY, component.stepY);
        raster->isLossless &= header.style.components[c].isReversible;
    }
}

int levelCount(const RasterInfo &raster)
{
    int levels = 1;
    while (std::max(raster.width, raster.height) >> (levels - 1) > kSmallestLevel)
        ++levels;
    return std::max(levels, std::min(raster.codedLevels, kMaxLevels));
}

} // namespace

IntRect RasterInfo::levelRect(int component, int level) const
{
    const ComponentInfo &info = components[component];
    return xrv::levelRect(everyNth({canvasX0, canvasY0, canvasX1, canvasY1}, info.stepX, info.stepY), level);
}

RasterInfo describeRaster(const MainHeader &header)
{
    RasterInfo raster;
    raster.canvasX0 = header.x0;
    raster.canvasY0 = header.y0;
    raster.canvasX1 = header.x1;
    raster.canvasY1 = header.y1;
    raster.tileWidth = header.tileWidth;
    raster.tileHeight = header.tileHeight;
    raster.tilesAcross = header.tilesAcross;
    raster.tilesDown = header.tilesDown;
    raster.qualityLayers = header.style.layers;
    describeComponents(header, &raster);
    const IntRect dataset = everyNth({header.x0, header.y0, header.x1, header.y1}, raster.minStepX, raster.minStepY);
    raster.width = static_cast<std::uint32_t>(dataset.width());
    raster.height = static_cast<std::uint32_t>(dataset.height());
    raster.codedLevels = header.style.minDecompositionLevels() + 1;
    raster.levels = levelCount(raster);
    return raster;
}

} // namespace xrv
