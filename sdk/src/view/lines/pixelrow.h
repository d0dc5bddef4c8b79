#pragma once

#include "cells/cellkind.h"

#include <xrv60/plktypes.h>

#include <algorithm>
#include <cmath>
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

/// \a number as \a Cell, rounded to the nearest and clamped to its range; what is no number becomes 0.
template <typename Cell, typename Number> Cell cellFrom(Number number)
{
    if constexpr (std::is_floating_point_v<Cell>) {
        return static_cast<Cell>(number);
    } else {
        using Limits = std::numeric_limits<Cell>;
        constexpr std::int64_t lowest = std::is_signed_v<Cell> ? static_cast<std::int64_t>(Limits::min()) : 0;
        constexpr std::int64_t highest =
            sizeof(Cell) == 8 ? std::numeric_limits<std::int64_t>::max() : static_cast<std::int64_t>(Limits::max());
        std::int64_t whole = 0;
        if constexpr (std::is_floating_point_v<Number>) {
            constexpr double kFarthest = 9223372036854774784.0; // the last one before 2^63
            if (!std::isnan(number))
                whole = std::llround(std::clamp(static_cast<double>(number), -kFarthest, kFarthest));
        } else {
            whole = number;
        }
        return static_cast<Cell>(std::clamp(whole, lowest, highest));
    }
}

/// Writes \a cells of \a kind as \a Cell; a Float as float stays as it is, bit by bit. \a target need not be aligned.
template <typename Cell> void writeCellsAs(const std::vector<std::int32_t> &cells, CellKind kind, std::uint8_t *target)
{
    const auto write = [&](auto numberOf) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const Cell cell = cellFrom<Cell>(numberOf(cells[i]));
            std::memcpy(target + i * sizeof(Cell), &cell, sizeof(Cell));
        }
    };
    if (kind == CellKind::Float)
        write(floatOfBits);
    else if (kind == CellKind::Unsigned)
        write([](std::int32_t cell) { return static_cast<std::uint32_t>(cell); });
    else
        write([](std::int32_t cell) { return cell; });
}

} // namespace xrv
