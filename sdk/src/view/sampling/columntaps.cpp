#include "columntaps.h"

#include <algorithm>

namespace xrv {

ColumnTaps::ColumnTaps(const CellGrid &grid, const ViewAxis &axis, bool interpolate)
{
    const bool matching = grid.matches(axis);
    pointwise = matching || !interpolate;
    boundPointwise = pointwise;
    const auto count = static_cast<std::size_t>(axis.insideCount());
    cells.resize(count);
    cellWeights.resize(pointwise ? 0 : count);
    for (std::size_t i = 0; i < count; ++i) {
        const double position = axis.centre(axis.insideBegin() + static_cast<int>(i));
        if (pointwise) {
            cells[i] = matching ? grid.covering(position) : grid.nearest(position);
        } else {
            const CellGrid::Tap tap = grid.between(position);
            cells[i] = tap.cell;
            cellWeights[i] = tap.weight;
        }
    }
}

void ColumnTaps::bind(std::int64_t x0, std::int64_t x1)
{
    if (x0 == boundFirst && x1 == boundLast)
        return;
    boundFirst = x0;
    boundLast = x1;
    // With a single column there is nothing to interpolate.
    boundPointwise = pointwise || x1 - x0 < 2;
    planeOffsets.resize(cells.size());
    planeWeights.resize(boundPointwise ? 0 : cells.size());
    contiguous = boundPointwise && !cells.empty();
    for (std::size_t i = 0; i < cells.size(); ++i) {
        bindPixel(i);
        contiguous = contiguous && planeOffsets[i] == planeOffsets[0] + static_cast<std::int32_t>(i);
    }
}

void ColumnTaps::bindPixel(std::size_t pixel)
{
    const std::int64_t cell = std::clamp(cells[pixel], boundFirst, boundLast - 1);
    planeOffsets[pixel] = static_cast<std::int32_t>(cell - boundFirst);
    if (boundPointwise)
        return;
    planeWeights[pixel] = cell == cells[pixel] ? cellWeights[pixel] : 0.0;
    // The column after the tap's is read even when it has no share, so it must exist.
    if (cell == boundLast - 1) {
        --planeOffsets[pixel];
        planeWeights[pixel] = 1.0;
    }
}

} // namespace xrv
