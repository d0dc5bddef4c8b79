#pragma once

namespace Korvane::Map {

/// Implemented by layers whose statistics may be an estimate until all cells are counted, which goes on in the
/// background. GUI thread; nothing here waits.
class ILayerStatistics
{
public:
    enum class StatisticsState {
        Unknown,   ///< nobody has asked for statistics yet, or there are none
        Estimated, ///< those that were given are of a part of the cells
        Counting,  ///< the same, and all cells are being counted
        Exact      ///< of every cell
    };
    virtual StatisticsState getStatisticsState() const = 0;
    /// Share of the cells that has been counted, 0 to 100.
    virtual int getStatisticsPercent() const = 0;
    /// Begins to count all cells; nothing where that is done or under way. Ask for the statistics again when they are
    /// exact.
    virtual void countStatistics() = 0;
    virtual void cancelStatistics() = 0;
    /// All cells are on this machine: counting them transfers nothing.
    virtual bool areCellsLocal() const = 0;

protected:
    ~ILayerStatistics() = default;
};

} // namespace Korvane::Map
