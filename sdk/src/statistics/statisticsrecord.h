#pragma once

#include <xrv60/plktypes.h>

#include <cstddef>
#include <memory>

namespace xrv {

struct StatisticsDeleter
{
    void operator()(PLKFileStatistics *statistics) const;
};
/// The public record with all it points to.
using StatisticsPtr = std::unique_ptr<PLKFileStatistics, StatisticsDeleter>;
/// One that several may read, and that stays as it is.
using SharedStatistics = std::shared_ptr<const PLKFileStatistics>;

/// A record of so many bands, with all figures 0 and without histograms.
StatisticsPtr makeStatisticsRecord(std::size_t bands);

StatisticsPtr copyOf(const PLKFileStatistics &statistics);

} // namespace xrv
