#pragma once

#include "mainheader.h"

#include "base/rect.h"

namespace xrv {

/// Rectangle of a tile on the canvas (ISO/IEC 15444-1 B.3).
IntRect tileRect(const MainHeader &header, std::uint32_t tile);
/// Rectangle of a canvas rectangle in one component (B.3, B-12).
IntRect componentRect(const IntRect &canvasRect, const MainHeader::Component &component);

/// Precincts of one resolution of a tile-component (B.6).
struct PrecinctGrid
{
    IntRect resolutionRect; ///< cells of the resolution
    int widthExponent = 15, heightExponent = 15;
    std::int64_t firstX = 0, firstY = 0; ///< indices of the first precinct, counted from the canvas origin
    std::int64_t across = 0, down = 0;
    std::int64_t count() const { return across * down; }
};
/// \a resolution: 0 is the lowest.
PrecinctGrid precinctGrid(const IntRect &tileComponentRect, const ComponentStyle &style, int resolution);

} // namespace xrv
