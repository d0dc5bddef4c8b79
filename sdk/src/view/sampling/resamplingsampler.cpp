#include "resamplingsampler.h"

#include "cells/cellkind.h"

#include <algorithm>

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
    const CellKind kind = cellKindOf(plane->type);
    if (kind == CellKind::Whole)
        for (int i = 0; i < count; ++i)
            cells[i] = roundedCell(upper[i] + (lower[i] - upper[i]) * weight);
    else
        for (int i = 0; i < count; ++i)
            cells[i] = bitsOfNumber(kind, upper[i] + (lower[i] - upper[i]) * weight);
}

void ComponentSampler::sampleBytes(int y, const ByteMap &map, std::uint8_t *bytes) const
{
    aim();
    pickBytes(*plane, rows.at(y).cell, *columns, map, bytes);
}

ResamplingSampler::ResamplingSampler(const BandMap &bandMap, std::vector<int> bands, const std::vector<int> &components,
                                     std::vector<ComponentSampler> samplers, int count)
    : bandMap(bandMap)
    , bands(std::move(bands))
    , samplers(std::move(samplers))
    , count(count)
{
    direct = std::all_of(this->bands.begin(), this->bands.end(), [&](int band) { return bandMap.isDirect(band); });
    for (int band : this->bands) {
        const int component = bandMap.bands()[static_cast<std::size_t>(band)].component;
        const auto found = std::find(components.begin(), components.end(), component);
        samplerOfBand.push_back(static_cast<std::size_t>(found - components.begin()));
    }
}

void ResamplingSampler::bind(const PlaneList &planes)
{
    for (std::size_t i = 0; i < samplers.size(); ++i)
        samplers[i].bind(*planes[i]);
}

void ResamplingSampler::sample(int y, std::int32_t *const *bandRows)
{
    if (direct) {
        for (std::size_t i = 0; i < bands.size(); ++i)
            samplers[samplerOfBand[i]].sample(y, bandRows[i]);
        return;
    }
    componentRows.resize(samplers.size());
    componentRowPointers.resize(samplers.size());
    for (std::size_t i = 0; i < samplers.size(); ++i) {
        componentRows[i].resize(static_cast<std::size_t>(count));
        samplers[i].sample(y, componentRows[i].data());
        componentRowPointers[i] = componentRows[i].data();
    }
    bandMap.convertRow(bands, componentRowPointers.data(), count, bandRows);
}

void ResamplingSampler::sampleBytes(int y, std::size_t band, const ByteMap &map, std::uint8_t *bytes) const
{
    samplers[samplerOfBand[band]].sampleBytes(y, map, bytes);
}

} // namespace xrv
