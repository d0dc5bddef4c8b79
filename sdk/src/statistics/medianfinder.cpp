#include "medianfinder.h"

#include <numeric>

namespace xrv {

namespace {

/// The counter that number \a *rank, from 0, falls into; \a *rank is then that within it.
std::uint32_t findRank(const std::vector<std::uint64_t> &counts, std::uint64_t *rank)
{
    std::uint32_t i = 0;
    while (i + 1 < counts.size() && *rank >= counts[i])
        *rank -= counts[i++];
    return i;
}

} // namespace

void MedianFinder::beginSecondPass()
{
    const std::uint64_t total = std::accumulate(upper.begin(), upper.end(), std::uint64_t(0));
    if (total == 0)
        return;
    middles[0].rank = (total - 1) / 2;
    middles[1].rank = total / 2;
    for (Middle &middle : middles) {
        middle.upper = findRank(upper, &middle.rank);
        middle.lower.resize(kHalves);
    }
}

std::uint32_t MedianFinder::Middle::number() const
{
    std::uint64_t left = rank;
    return lower.empty() ? 0 : upper << kHalfBits | findRank(lower, &left);
}

} // namespace xrv
