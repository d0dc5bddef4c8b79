#pragma once

#include <xrv60/plktypes.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace xrv {

/// Counts the cells of one band and makes its statistics of them.
///
/// Bands of up to 16 bits have a counter for every value, so their figures are exact. Deeper ones are gone through
/// twice: the second time, in equal steps between the smallest and the largest value of the first; where a step takes
/// several values, mode and median are those of its middle.
class BandCounter
{
public:
    /// Deeper bands than 8 bits get at most \a maxBuckets (256 to 65536) buckets in their histogram.
    BandCounter(int bits, bool isSigned, std::size_t maxBuckets);

    /// Memory that a counter for \a bits takes, in bytes.
    static std::size_t memoryFor(int bits);
    /// How often its cells have to be added.
    static int passesFor(int bits);

    template <typename Cell> void add(const Cell *cells, std::size_t count)
    {
        if (isScouting)
            scout(cells, count);
        else
            tally(cells, count);
    }

    /// After all cells: true when they have to be added once more.
    bool beginNextPass();
    /// After the last pass. Allocates the histogram, which StatisticsDeleter releases.
    void finish(PLKBandStatistics *statistics) const;

private:
    template <typename Cell> void scout(const Cell *cells, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const auto value = static_cast<std::int64_t>(cells[i]);
            smallest = value < smallest ? value : smallest;
            largest = value > largest ? value : largest;
        }
    }
    template <typename Cell> void tally(const Cell *cells, std::size_t count)
    {
        const auto last = static_cast<std::int64_t>(counts.size()) - 1;
        for (std::size_t i = 0; i < count; ++i) {
            std::int64_t step = static_cast<std::int64_t>(cells[i]) - first;
            if (valuesPerStep != 1.0) {
                addToSums(step);
                step = static_cast<std::int64_t>(static_cast<double>(step) / valuesPerStep);
            }
            ++counts[static_cast<std::size_t>(step < 0 ? 0 : step > last ? last : step)];
        }
    }
    void addToSums(std::int64_t distance)
    {
        sum += static_cast<double>(distance);
        sumOfSquares += static_cast<double>(distance) * static_cast<double>(distance);
    }

    double valueOf(std::size_t step) const;
    void computeMoments(double total, PLKBandStatistics *statistics) const;
    double median(std::uint64_t total) const;
    void makeHistogram(PLKBandStatistics *statistics) const;

    int bits;
    bool isSigned;
    std::size_t maxBuckets;
    bool isScouting;
    std::int64_t smallest, largest; ///< seen while scouting
    std::int64_t first = 0;         ///< value of the first counter
    double valuesPerStep = 1.0;
    std::vector<std::uint64_t> counts;
    double sum = 0.0, sumOfSquares = 0.0; ///< of distances from first, where a step takes several values
};

} // namespace xrv
