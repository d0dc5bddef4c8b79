#pragma once

#include "viewaxis.h"

#include "decode/rasterreader.h"

#include <cstdint>

namespace xrv {

/// Where the cells of one component at one level lie along one axis of the dataset.
///
/// The samples of a component stand at multiples of its step on the codestream's canvas (ISO/IEC 15444-1 B.2), and the
/// low-pass samples of a resolution level on every second one of the level above (F.3): cell u of level L has its
/// centre where cell u * 2^L of the full resolution has it. Levels below the codestream's own are averages, whose
/// centres are those of the cells that they were made of.
class CellGrid
{
public:
    enum class Axis { X, Y };
    CellGrid(const RasterInfo &raster, int component, int level, Axis axis);

    /// A cell and the one after it, which has the share \a weight (0 to below 1) in what lies between their centres.
    struct Tap
    {
        std::int64_t cell;
        double weight;
    };

    /// Cell whose centre is nearest to \a position (dataset coordinates). Half-way it is the cell that begins with its
    /// own sample, so that subsampled components are repeated side by side. Clamped to the component.
    std::int64_t nearest(double position) const;
    /// Cell that covers \a position when each cell reaches from its own sample to the next. Clamped.
    std::int64_t covering(double position) const;
    /// Clamped so that nothing beyond the component's edges has a share.
    Tap between(double position) const;
    /// One cell per pixel, edges upon edges: then cells can be shown untouched.
    bool matches(const ViewAxis &axis) const;

    /// Dataset cells per cell.
    double cellSpan() const { return span; }
    bool isEmpty() const { return last <= first; }
    /// Same cells at the same places.
    bool operator==(const CellGrid &other) const
    {
        return span == other.span && origin == other.origin && centreOffset == other.centreOffset &&
               first == other.first && last == other.last;
    }

private:
    std::int64_t clamped(double cell) const;

    double span;              ///< dataset cells per cell
    double origin;            ///< dataset coordinate 0, counted from the canvas's origin
    double centreOffset;      ///< from a cell's own sample position to its centre
    std::int64_t first, last; ///< cells [first, last) exist
};

} // namespace xrv
