#include "passplanner.h"

#include <algorithm>

namespace xrv {

namespace {

// Milliseconds. The first pass must be on screen within 60, of which drawing and a wrong estimate take their part.
constexpr double kFirstPass = 25.0;
// A final pass may come alone up to 50; estimates are not that exact.
constexpr double kSinglePass = 30.0;
// Passes in between pay when each takes a good part of the one that follows.
constexpr double kGrowth = 4.0;
constexpr double kMaxShare = 0.4;
constexpr double kWorthPassesBetween = 300.0;

constexpr double kTooShort = 2.0; ///< milliseconds; shorter reads tell more of the clock than of the decoder
constexpr double kNewest = 0.5;   ///< weight of the newest measurement

} // namespace

void RateTracker::learn(double estimated, double measured)
{
    if (estimated < kTooShort)
        return;
    const double seen = std::clamp(measured / estimated, 0.1, 20.0);
    factor = measuredOnce ? factor + (seen - factor) * kNewest : seen;
    measuredOnce = true;
}

PassPlanner::PassPlanner(std::vector<int> levels, CostOf costOf, Expected expected)
    : levels(std::move(levels))
    , costOf(std::move(costOf))
    , expected(std::move(expected))
{
}

Pass PassPlanner::pass(int level, ReadCost *cost) const
{
    const ReadCost found = costOf(level);
    if (cost != nullptr)
        *cost = found;
    return {level, found.milliseconds, expected(found.milliseconds)};
}

std::vector<Pass> PassPlanner::plan()
{
    // A view that is soon complete is best shown at once: a coarse pass before it would only flicker.
    const Pass last = pass(levels.front(), &costOfFinal);
    const bool isCached = costOfFinal.cacheTilesReady >= costOfFinal.cacheTiles;
    if (isCached || last.expected <= kSinglePass || levels.size() == 1)
        return {last};
    std::vector<Pass> passes; // coarse to fine
    for (const Pass &coarse : coarsePasses()) {
        const bool isFirst = passes.empty();
        const bool isWorthIt = last.expected > kWorthPassesBetween && coarse.expected <= kMaxShare * last.expected &&
                               !isFirst && coarse.expected >= kGrowth * passes.back().expected;
        if (isFirst || isWorthIt)
            passes.push_back(coarse);
    }
    passes.push_back(last);
    return passes;
}

/// The first pass and all levels between it and the final one, coarse to fine.
std::vector<Pass> PassPlanner::coarsePasses() const
{
    // Coarser is cheaper as a rule, but not always: cells of a finer level may be in the cache already, and levels
    // beyond the codestream's own are averaged from the last of these. So the search ends at the first level that is
    // sure to be in time, and goes back to the cheapest one where none is.
    std::vector<Pass> passes; // fine to coarse
    std::size_t cheapest = 0;
    for (auto level = levels.begin() + 1; level != levels.end(); ++level) {
        passes.push_back(pass(*level));
        if (passes.back().expected < passes[cheapest].expected)
            cheapest = passes.size() - 1;
        if (passes.back().expected <= kFirstPass)
            break;
    }
    passes.resize(cheapest + 1);
    std::reverse(passes.begin(), passes.end());
    return passes;
}

} // namespace xrv
