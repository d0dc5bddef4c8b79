#pragma once

#include "base/plane.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Coefficients or samples of a rectangle.
template <typename T> struct Grid
{
    IntRect rect;
    std::vector<T> cells; ///< rows packed
    void reset(const IntRect &newRect)
    {
        rect = newRect;
        cells.assign(rect.isEmpty() ? 0 : static_cast<std::size_t>(rect.width() * rect.height()), T(0));
    }
    T *row(std::int64_t y) { return cells.data() + (y - rect.y0) * rect.width(); }
    const T *row(std::int64_t y) const { return cells.data() + (y - rect.y0) * rect.width(); }
};

/// Cells of a subband that the synthesis of \a region needs: \a resolutionRect is all of the resolution, \a region a
/// part of it, \a orientation 0 LL, 1 HL, 2 LH, 3 HH of the decomposition below it.
IntRect neededBandRect(const IntRect &resolutionRect, const IntRect &region, int orientation);

/// One level of the inverse wavelet transformation (ISO/IEC 15444-1 F.3): the 5-3 reversible one for T = std::int32_t
/// and std::int64_t, the 9-7 irreversible one for T = float and double. \a bands are LL, HL, LH and HH, each covering
/// neededBandRect(). \a result covers at least \a region.
template <typename T>
void synthesize(const IntRect &resolutionRect, const IntRect &region, const Grid<T> *const bands[4], Grid<T> *result);

} // namespace xrv
