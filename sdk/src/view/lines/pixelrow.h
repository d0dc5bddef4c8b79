#pragma once

#include <xrv60/plktypes.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace xrv {

/// Writes \a count pixels of blue, green, red and alpha bytes; alpha is 255 where \a alpha is null. The rows may be the
/// same; \a pixels need not be aligned.
void interleaveBgra(const std::uint8_t *blue, const std::uint8_t *green, const std::uint8_t *red,
                    const std::uint8_t *alpha, int count, std::uint8_t *pixels);

/// Bytes of a cell; 0 for a value that is no type.
std::size_t cellSize(PLKCellType type);

/// Writes \a cells as \a Cell, clamped to its range. \a target need not be aligned.
template <typename Cell> void writeCellsAs(const std::vector<std::int32_t> &cells, std::uint8_t *target)
{
    for (std::size_t i = 0; i < cells.size(); ++i) {
        Cell cell;
        if constexpr (std::is_floating_point_v<Cell>) {
            cell = static_cast<Cell>(cells[i]);
        } else {
            using Limits = std::numeric_limits<Cell>;
            constexpr std::int64_t lowest = std::is_signed_v<Cell> ? static_cast<std::int64_t>(Limits::min()) : 0;
            constexpr std::int64_t highest =
                sizeof(Cell) == 8 ? std::numeric_limits<std::int64_t>::max() : static_cast<std::int64_t>(Limits::max());
            cell = static_cast<Cell>(std::clamp<std::int64_t>(cells[i], lowest, highest));
        }
        std::memcpy(target + i * sizeof(Cell), &cell, sizeof(Cell));
    }
}

} // namespace xrv
