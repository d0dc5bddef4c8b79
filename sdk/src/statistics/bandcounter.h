#pragma once

#include "medianfinder.h"

#include "cells/cellmapping.h"

#include <xrv60/plktypes.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <type_traits>
#include <vector>

namespace xrv {

/// Counts the cells of one band and makes its statistics of them.
///
/// Bands of up to 16 bits have a counter for every value, so their figures are exact. Deeper ones are gone through
/// twice: the second time, in equal steps between the smallest and the largest value of the first; where a step takes
/// several values, the mode is its middle. So are Floats; where all of them are whole numbers they are
/// counted like these. Infinities and what is no number are left out.
class BandCounter
{
public:
    /// Deeper bands than 8 bits get at most \a maxBuckets (256 to 65536) buckets in their histogram.
    BandCounter(int bits, bool isSigned, std::size_t maxBuckets, CellKind kind = CellKind::Whole);

    /// Memory that a counter for \a bits takes, in bytes.
    static std::size_t memoryFor(int bits);
    /// How often its cells have to be added.
    static int passesFor(int bits);

    /// \a cells of the band's own type, or in rows of std::int32_t.
    template <typename Cell> void add(const Cell *cells, std::size_t count)
    {
        if (isDone)
            return;
        if constexpr (std::is_same_v<Cell, std::int32_t>) {
            if (kind == CellKind::Float)
                return addAs<float>(cells, count, floatOfBits);
            if (kind == CellKind::Unsigned)
                return addAs<std::uint32_t>(cells, count, [](std::int32_t cell) { return std::uint32_t(cell); });
        }
        if (isScouting)
            scout(cells, count);
        else
            tally(cells, count);
    }

    /// After all cells: true when they have to be added once more. Else those that others need again are ignored.
    bool beginNextPass();
    /// After the last pass. Allocates the histogram, which StatisticsDeleter releases.
    void finish(PLKBandStatistics *statistics) const;

private:
    template <typename Cell, typename Convert> void addAs(const std::int32_t *cells, std::size_t count, Convert convert)
    {
        std::array<Cell, 512> chunk; // NOLINT(cppcoreguidelines-pro-type-member-init): is filled before it is read
        for (std::size_t done = 0; done < count; done += chunk.size()) {
            const std::size_t part = std::min(chunk.size(), count - done);
            std::transform(cells + done, cells + done + part, chunk.begin(), convert);
            add(chunk.data(), part);
        }
    }
    template <typename Cell> void scout(const Cell *cells, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i) {
            const auto value = static_cast<double>(cells[i]);
            if constexpr (std::is_floating_point_v<Cell>) {
                if (!std::isfinite(value))
                    continue;
                areWhole = areWhole && std::floor(value) == value;
            }
            medianFinder->scout(keyOf(cells[i]));
            smallest = value < smallest ? value : smallest;
            largest = value > largest ? value : largest;
        }
    }
    template <typename Cell> void tally(const Cell *cells, std::size_t count)
    {
        const auto last = static_cast<std::int64_t>(counts.size()) - 1;
        const auto firstWhole = static_cast<std::int64_t>(first);
        const bool exact = isExact(), isDeep = medianFinder.has_value();
        for (std::size_t i = 0; i < count; ++i) {
            std::int64_t step = 0;
            if constexpr (std::is_floating_point_v<Cell>) {
                if (!std::isfinite(cells[i]))
                    continue;
                const double distance = static_cast<double>(cells[i]) - first;
                if (!exact)
                    addToSums(distance);
                step = static_cast<std::int64_t>(distance / valuesPerStep);
            } else {
                step = static_cast<std::int64_t>(cells[i]) - firstWhole;
                if (!exact) {
                    addToSums(static_cast<double>(step));
                    step = static_cast<std::int64_t>(static_cast<double>(step) / valuesPerStep);
                }
            }
            ++counts[static_cast<std::size_t>(step < 0 ? 0 : step > last ? last : step)];
            if (isDeep)
                medianFinder->tally(keyOf(cells[i]));
        }
    }
    /// Every value has a counter of its own.
    bool isExact() const { return areWhole && valuesPerStep == 1.0; }
    void addToSums(double distance)
    {
        sum += distance;
        sumOfSquares += distance * distance;
    }
    /// In the order of the values. Deeper cells than 32 bits are clamped.
    template <typename Cell> std::uint32_t keyOf(Cell cell) const
    {
        if constexpr (std::is_floating_point_v<Cell>)
            return static_cast<std::uint32_t>(CellMapping::ordered(bitsOfFloat(cell))) ^ kKeyOfZero;
        else if constexpr (std::is_unsigned_v<Cell>)
            return cell;
        else
            return static_cast<std::uint32_t>(bitsOfCell(cell)) ^ (isSigned ? kKeyOfZero : 0);
    }
    double valueOfKey(std::uint32_t key) const;
    double valueOf(std::size_t step) const;
    void computeMoments(double total, PLKBandStatistics *statistics) const;
    double median(std::uint64_t total) const;
    void makeHistogram(PLKBandStatistics *statistics) const;

    static constexpr std::uint32_t kKeyOfZero = 0x80000000; ///< of cells with a sign

    int bits;
    bool isSigned;
    std::size_t maxBuckets;
    CellKind kind;
    bool isScouting;
    bool isDone = false;
    bool areWhole = true;     ///< all cells seen while scouting
    double smallest, largest; ///< seen while scouting
    double first = 0.0;       ///< lowest value of the first counter
    double valuesPerStep = 1.0;
    std::vector<std::uint64_t> counts;
    std::optional<MedianFinder> medianFinder; ///< of deep bands
    double sum = 0.0, sumOfSquares = 0.0;     ///< of distances from first, where a step takes several values
};

} // namespace xrv
