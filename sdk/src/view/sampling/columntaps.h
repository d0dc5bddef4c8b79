#pragma once

#include "cellgrid.h"
#include "viewaxis.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Which columns of a plane the inside pixels of a view's lines come from. Worked out once per view, so that making a
/// line is looking things up.
class ColumnTaps
{
public:
    ColumnTaps(const CellGrid &grid, const ViewAxis &axis, bool interpolate);

    /// Aims at planes with the columns [x0, x1); columns outside are replaced by the nearest inside.
    void bind(std::int64_t x0, std::int64_t x1);

    int count() const { return static_cast<int>(cells.size()); }
    /// Every pixel is one cell.
    bool isPointwise() const { return boundPointwise; }
    /// Pixel i comes from column offsets()[0] + i. Pointwise taps only.
    bool isContiguous() const { return contiguous; }
    /// Column in the plane per pixel.
    const std::int32_t *offsets() const { return planeOffsets.data(); }
    /// Share of the column after offsets(); not for pointwise taps.
    const double *weights() const { return planeWeights.data(); }

private:
    void bindPixel(std::size_t pixel);

    bool pointwise;
    bool boundPointwise = true;
    bool contiguous = false;
    std::int64_t boundFirst = 0, boundLast = 0;
    std::vector<std::int64_t> cells; ///< level coordinates
    std::vector<double> cellWeights; ///< empty when pointwise
    std::vector<std::int32_t> planeOffsets;
    std::vector<double> planeWeights;
};

/// The same for rows, one at a time.
class RowTaps
{
public:
    RowTaps(const CellGrid &grid, const ViewAxis &axis, bool interpolate)
        : grid(grid)
        , axis(axis)
        , matching(grid.matches(axis))
        , interpolate(interpolate && !matching)
    {
    }
    bool isPointwise() const { return !interpolate; }
    CellGrid::Tap at(int pixel) const
    {
        const double position = axis.centre(pixel);
        if (interpolate)
            return grid.between(position);
        return {matching ? grid.covering(position) : grid.nearest(position), 0.0};
    }

private:
    CellGrid grid;
    ViewAxis axis;
    bool matching;
    bool interpolate;
};

} // namespace xrv
