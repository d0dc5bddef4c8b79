#pragma once

#include "decode/rasterreader.h"

#include <functional>
#include <vector>

namespace xrv {

/// Learns by how much reads take longer or shorter than the reader estimates, on this machine and for this file. Until
/// a read was measured they are expected to take three times as long: the first ones also read the file's index and
/// start threads.
class RateTracker
{
public:
    /// Milliseconds to expect for a read that is estimated to take \a estimated.
    double expected(double estimated) const { return estimated * factor; }
    /// A read estimated to take \a estimated took \a measured milliseconds.
    void learn(double estimated, double measured);

private:
    double factor = 3.0;
    bool measuredOnce = false;
};

/// One pass of a progressive view.
struct Pass
{
    int level = 0;
    double estimated = 0.0; ///< milliseconds, as the reader estimates
    double expected = 0.0;  ///< milliseconds, by what was measured before
};

/// Plans the passes of a progressive view, coarse to fine.
///
/// A view that can be had soon, because its cells are few or decoded already, is one pass. Any other begins with the
/// finest level that is sure to be on screen within 60 ms, or else with the cheapest, and may have passes in between
/// when the final one is far away.
class PassPlanner
{
public:
    /// Cost of the view at a level, and what to expect for the milliseconds in it.
    using CostOf = std::function<ReadCost(int level)>;
    using Expected = std::function<double(double estimated)>;

    /// \a levels are the levels that can be used, beginning with the final one, finest first.
    PassPlanner(std::vector<int> levels, CostOf costOf, Expected expected);

    /// Never empty; the last pass is the final one.
    std::vector<Pass> plan();
    /// Cost of the final pass; after plan().
    const ReadCost &finalCost() const { return costOfFinal; }

private:
    Pass pass(int level, ReadCost *cost = nullptr) const;
    std::vector<Pass> coarsePasses() const;

    std::vector<int> levels;
    CostOf costOf;
    Expected expected;
    ReadCost costOfFinal;
};

} // namespace xrv
