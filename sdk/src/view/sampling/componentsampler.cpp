#include "componentsampler.h"

namespace xrv {

ComponentSampler::ComponentSampler(std::shared_ptr<ColumnTaps> columns, const RowTaps &rows)
    : columns(std::move(columns))
    , rows(rows)
    , blended(static_cast<std::size_t>(this->columns->count()))
{
}

void ComponentSampler::bind(const Plane &newPlane)
{
    plane = &newPlane;
    aim();
}

/// Components of one grid share their columns, but nothing says that their planes are equally wide.
void ComponentSampler::aim() const
{
    columns->bind(plane->rect.x0, plane->rect.x1);
}

const double *ComponentSampler::blendedRow(std::int64_t row)
{
    return blended.row(row, [this](std::int64_t r, double *numbers) { blendRow(*plane, r, *columns, numbers); });
}

void ComponentSampler::sample(int y, std::int32_t *cells)
{
    aim();
    const CellGrid::Tap tap = rows.at(y);
    if (isPointwise())
        return pickRow(*plane, tap.cell, *columns, cells);
    const int count = columns->count();
    const double *upper = blendedRow(tap.cell);
    const double *lower = tap.weight > 0.0 ? blendedRow(tap.cell + 1) : upper;
    const double weight = tap.weight;
    for (int i = 0; i < count; ++i)
        cells[i] = roundedCell(upper[i] + (lower[i] - upper[i]) * weight);
}

void ComponentSampler::sampleBytes(int y, const ByteMap &map, std::uint8_t *bytes) const
{
    aim();
    pickBytes(*plane, rows.at(y).cell, *columns, map, bytes);
}

} // namespace xrv
