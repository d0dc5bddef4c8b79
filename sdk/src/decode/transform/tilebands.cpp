#include "tilebands.h"

#include "wavelet.h"

#include <algorithm>

namespace xrv {

void appendCodeBlocks(const IntRect &tileComponent, const ComponentStyle &style, int component, int resolution,
                      int orientation, const IntRect &band, std::vector<CodeBlockPlace> *codeBlocks)
{
    if (band.isEmpty())
        return;
    const PrecinctGrid grid = precinctGrid(tileComponent, style, resolution);
    const int halved = resolution == 0 ? 0 : 1; // precincts are given in cells of the resolution, not of its subbands
    const int widthExponent = grid.widthExponent - halved, heightExponent = grid.heightExponent - halved;
    const int bandNumber = resolution == 0 ? 0 : orientation - 1;
    for (std::int64_t py = band.y0 >> heightExponent; py < ceilShift(band.y1, heightExponent); ++py) {
        for (std::int64_t px = band.x0 >> widthExponent; px < ceilShift(band.x1, widthExponent); ++px) {
            const std::int64_t precinct = (py - grid.firstY) * grid.across + (px - grid.firstX);
            const BandGrid bandGrid = bandGrids(tileComponent, style, grid, resolution, precinct)[bandNumber];
            const IntRect common = bandGrid.bandRect.intersected(band);
            if (common.isEmpty())
                continue;
            for (std::int64_t y = common.y0 >> bandGrid.heightExponent;
                 y < ceilShift(common.y1, bandGrid.heightExponent); ++y) {
                for (std::int64_t x = common.x0 >> bandGrid.widthExponent;
                     x < ceilShift(common.x1, bandGrid.widthExponent); ++x) {
                    const auto number =
                        static_cast<std::uint32_t>((y - bandGrid.firstY) * bandGrid.across + (x - bandGrid.firstX));
                    codeBlocks->push_back({{component, resolution, precinct, bandNumber, number},
                                           orientation,
                                           bandGrid.codeBlockRect(number)});
                }
            }
        }
    }
}

std::vector<CodeBlockPlace> codeBlocksFor(const IntRect &tileComponent, const ComponentStyle &style, int component,
                                          int discarded, const IntRect &region)
{
    std::vector<CodeBlockPlace> codeBlocks;
    IntRect wanted = region;
    for (int level = discarded; level < style.decompositionLevels; ++level) {
        const IntRect resolutionRect = levelRect(tileComponent, level);
        const int resolution = style.decompositionLevels - level;
        for (int orientation = 1; orientation <= 3; ++orientation)
            appendCodeBlocks(tileComponent, style, component, resolution, orientation,
                             neededBandRect(resolutionRect, wanted, orientation), &codeBlocks);
        wanted = neededBandRect(resolutionRect, wanted, 0);
    }
    appendCodeBlocks(tileComponent, style, component, 0, 0, wanted, &codeBlocks);
    return codeBlocks;
}

} // namespace xrv
