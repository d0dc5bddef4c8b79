#include "statisticsrecord.h"

#include <algorithm>
#include <cstdint>

namespace xrv {

void StatisticsDeleter::operator()(PLKFileStatistics *statistics) const
{
    for (std::uint32_t i = 0; i < statistics->nBands; ++i)
        delete[] statistics->pBandStats[i].pHistogram;
    delete[] statistics->pBandStats;
    delete statistics;
}

StatisticsPtr makeStatisticsRecord(std::size_t bands)
{
    StatisticsPtr record(new PLKFileStatistics{nullptr, 0});
    record->pBandStats = new PLKBandStatistics[bands]();
    record->nBands = static_cast<std::uint32_t>(bands);
    return record;
}

StatisticsPtr copyOf(const PLKFileStatistics &statistics)
{
    StatisticsPtr copy = makeStatisticsRecord(statistics.nBands);
    for (std::uint32_t i = 0; i < statistics.nBands; ++i) {
        const PLKBandStatistics &from = statistics.pBandStats[i];
        auto *histogram = new std::uint64_t[from.nHistBucketCount];
        std::copy_n(from.pHistogram, from.nHistBucketCount, histogram);
        copy->pBandStats[i] = from;
        copy->pBandStats[i].pHistogram = histogram;
    }
    return copy;
}

} // namespace xrv
