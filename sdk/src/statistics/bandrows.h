#pragma once

#include "bandcounter.h"

#include "colour/bandmap.h"
#include "decode/rasterreader.h"

#include <xrv60/plkerror.h>

#include <vector>

namespace xrv {

class FaultLog;

/// Reads cells of a group of bands and hands them to their counters: bands that are a component's cells straight from
/// the decoded planes, on their own grid where they are subsampled, others row by row through the palette or colour
/// conversion.
class BandRows
{
public:
    /// \a faults, which may be null, is told of damage.
    BandRows(RasterReader &reader, const BandMap &map, std::vector<int> bands, FaultLog *faults);

    /// How all that follows is to be read; only flags and margin of \a request count.
    void readLike(const ReadRequest &request) { manner = request; }
    /// Leaves out cells that the opacity band hides: those of opacity 0 and, at levels above 0, where neighbours are
    /// mixed, all that are not fully opaque. Opacity itself is counted everywhere.
    void leaveOutHidden();
    /// Says that all of \a windows will be read at \a level.
    PLK::CError prefetch(const std::vector<IntRect> &windows, int level) const;
    /// Adds the cells of \a window (dataset cells) at \a level to \a counters, one for each band. Windows that touch
    /// give no cell twice. Errors are those of the reader.
    PLK::CError read(const IntRect &window, int level, std::vector<BandCounter> *counters) const;

private:
    struct Steps
    {
        std::uint32_t x = 1, y = 1;
    };
    ReadRequest requestFor(const IntRect &window, int level) const;
    Steps stepsOf(int component) const;
    Steps finestSteps(const std::vector<int> &components) const;
    IntRect coreRect(const IntRect &window, int level, Steps steps) const;
    const Plane *opacityPlane(const std::vector<Plane> &planes) const;
    void countDirect(const Plane &plane, const IntRect &core, const Plane *opacity, int level,
                     BandCounter *counter) const;
    void countConverted(const std::vector<Plane> &planes, const IntRect &window, int level,
                        std::vector<BandCounter> *counters) const;
    /// \a cells: \a count of them from place (\a x, \a y) on. \a opacity may be null.
    template <typename Cell>
    void add(const Cell *cells, std::int64_t x, std::int64_t y, std::size_t count, const Plane *opacity, int level,
             BandCounter *counter) const;

    RasterReader &reader;
    const BandMap &map;
    const std::vector<int> bands;
    std::vector<int> componentsToRead; ///< for them
    int opacity = -1;                  ///< band that hides others, -1 for none
    FaultLog *const faults;
    ReadRequest manner;
    std::vector<int> converted; ///< those of the bands that are no component's cells
    std::vector<int> convertedComponents;
};

} // namespace xrv
