#include "canvas.h"

#include <algorithm>

namespace xrv {

IntRect tileRect(const MainHeader &header, std::uint32_t tile)
{
    const std::int64_t column = tile % header.tilesAcross, row = tile / header.tilesAcross;
    const std::int64_t x = header.tileX0 + column * header.tileWidth, y = header.tileY0 + row * header.tileHeight;
    return IntRect{x, y, x + header.tileWidth, y + header.tileHeight}.intersected(
        {header.x0, header.y0, header.x1, header.y1});
}

IntRect componentRect(const IntRect &canvasRect, const MainHeader::Component &component)
{
    return everyNth(canvasRect, component.stepX, component.stepY);
}

PrecinctGrid precinctGrid(const IntRect &tileComponentRect, const ComponentStyle &style, int resolution)
{
    PrecinctGrid grid;
    grid.resolutionRect = levelRect(tileComponentRect, style.decompositionLevels - resolution);
    grid.widthExponent = style.precinctWidthExponent(resolution);
    grid.heightExponent = style.precinctHeightExponent(resolution);
    const IntRect &r = grid.resolutionRect;
    grid.firstX = r.x0 >> grid.widthExponent;
    grid.firstY = r.y0 >> grid.heightExponent;
    grid.across = r.x1 > r.x0 ? ceilShift(r.x1, grid.widthExponent) - grid.firstX : 0;
    grid.down = r.y1 > r.y0 ? ceilShift(r.y1, grid.heightExponent) - grid.firstY : 0;
    return grid;
}

} // namespace xrv
