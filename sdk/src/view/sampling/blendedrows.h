#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace xrv {

/// Keeps the last two rows that were interpolated along x: as lines go down, each serves several lines.
class BlendedRows
{
public:
    explicit BlendedRows(std::size_t numbersPerRow)
        : numbers(numbersPerRow)
    {
    }

    /// Numbers of \a row, from \a make(row, numbers) where they are not at hand. Valid until two other rows were asked
    /// for.
    template <typename Make> const double *row(std::int64_t row, Make make)
    {
        for (Entry &entry : entries) {
            if (entry.valid && entry.row == row) {
                oldest = &entry == entries.data() ? 1 : 0;
                return entry.numbers.data();
            }
        }
        Entry &entry = entries[oldest];
        oldest = 1 - oldest;
        entry.numbers.resize(numbers);
        entry.row = row;
        entry.valid = true;
        make(row, entry.numbers.data());
        return entry.numbers.data();
    }

private:
    struct Entry
    {
        bool valid = false;
        std::int64_t row = 0;
        std::vector<double> numbers;
    };
    std::size_t numbers;
    std::array<Entry, 2> entries;
    std::size_t oldest = 0;
};

/// Nearest whole number, halves away from zero. |value| stays below 2^31.
inline std::int32_t roundedCell(double value)
{
    return static_cast<std::int32_t>(value + (value < 0.0 ? -0.5 : 0.5));
}

} // namespace xrv
