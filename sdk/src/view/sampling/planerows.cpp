#include "planerows.h"

#include "base/planerow.h"
#include "cells/cellkind.h"

#include <algorithm>
#include <type_traits>

namespace xrv {

namespace {

/// The row nearest to \a row that there is.
template <typename Use> void withNearestRow(const Plane &plane, std::int64_t row, Use use)
{
    withRow(plane, std::clamp(row, plane.rect.y0, plane.rect.y1 - 1), use);
}

template <typename Cell, typename Result, typename Convert>
void pick(const Cell *row, const ColumnTaps &taps, Result *results, Convert convert)
{
    const int count = taps.count();
    const std::int32_t *offsets = taps.offsets();
    if (taps.isContiguous()) {
        const Cell *from = row + offsets[0];
        for (int i = 0; i < count; ++i)
            results[i] = convert(from[i]);
        return;
    }
    for (int i = 0; i < count; ++i)
        results[i] = convert(row[offsets[i]]);
}

template <typename Cell>
void pickBytes(const Cell *from, const ColumnTaps &taps, const ByteMap &map, std::uint8_t *bytes)
{
    const std::uint8_t *table = map.tableForStored(sizeof(Cell), std::is_signed_v<Cell>);
    if (table == nullptr)
        pick(from, taps, bytes, [&](Cell cell) { return map.at(cell); });
    else if (map.isIdentity())
        pick(from, taps, bytes, [](Cell cell) { return static_cast<std::uint8_t>(cell); });
    else
        pick(from, taps, bytes, [=](Cell cell) { return table[static_cast<std::make_unsigned_t<Cell>>(cell)]; });
}

template <typename Cell> void blend(const Cell *row, const ColumnTaps &taps, double *cells)
{
    const int count = taps.count();
    const std::int32_t *offsets = taps.offsets();
    const double *weights = taps.weights();
    for (int i = 0; i < count; ++i) {
        const auto left = static_cast<double>(row[offsets[i]]);
        const auto right = static_cast<double>(row[offsets[i] + 1]);
        cells[i] = left + (right - left) * weights[i];
    }
}

template <typename Cell> void pickOrBlend(const Cell *row, const ColumnTaps &taps, double *cells)
{
    if (taps.isPointwise())
        pick(row, taps, cells, [](Cell cell) { return static_cast<double>(cell); });
    else
        blend(row, taps, cells);
}

} // namespace

void readRow(const Plane &plane, std::int64_t row, std::int32_t *cells)
{
    const std::int64_t width = plane.rect.width();
    withNearestRow(plane, row, [=](auto *from) {
        for (std::int64_t i = 0; i < width; ++i)
            cells[i] = bitsOfCell(from[i]);
    });
}

void pickRow(const Plane &plane, std::int64_t row, const ColumnTaps &taps, std::int32_t *cells)
{
    withNearestRow(plane, row,
                   [&](auto *from) { pick(from, taps, cells, [](auto cell) { return bitsOfCell(cell); }); });
}

void pickBytes(const Plane &plane, std::int64_t row, const ColumnTaps &taps, const ByteMap &map, std::uint8_t *bytes)
{
    withNearestRow(plane, row, [&](auto *from) {
        using Cell = std::remove_const_t<std::remove_pointer_t<decltype(from)>>;
        if constexpr (std::is_floating_point_v<Cell>)
            return pick(from, taps, bytes, [&](Cell cell) { return map.atFloat(cell); });
        else
            pickBytes(from, taps, map, bytes);
    });
}

void blendRow(const Plane &plane, std::int64_t row, const ColumnTaps &taps, double *cells)
{
    withNearestRow(plane, row, [&](auto *from) { pickOrBlend(from, taps, cells); });
}

void blendRow(const double *row, const ColumnTaps &taps, double *cells)
{
    pickOrBlend(row, taps, cells);
}

} // namespace xrv
