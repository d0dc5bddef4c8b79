#include "convertingsampler.h"

#include "planerows.h"

#include <algorithm>

namespace xrv {

namespace {

std::int32_t cellOf(CellKind kind, double value)
{
    return kind == CellKind::Whole ? roundedCell(value) : bitsOfNumber(kind, value);
}

} // namespace

ConvertingSampler::ConvertingSampler(const BandMap &bandMap, std::vector<int> bands, int opacity,
                                     std::shared_ptr<ColumnTaps> columns, const RowTaps &rows)
    : bandMap(bandMap)
    , bands(std::move(bands))
    , opacity(opacity)
    , columns(std::move(columns))
    , rows(rows)
    , blended(static_cast<std::size_t>(this->columns->count()) * this->bands.size())
    , convertedRows(this->bands.size())
    , opacities(static_cast<std::size_t>(this->columns->count()))
{
}

void ConvertingSampler::bind(const PlaneList &newPlanes)
{
    planes = newPlanes;
    componentRows.resize(planes.size());
    const IntRect rect = planes.front()->rect;
    columns->bind(rect.x0, rect.x1);
    const auto width = static_cast<std::size_t>(rect.width());
    // A plane of another width would be damage; its rows are cut or filled up.
    for (std::size_t i = 0; i < planes.size(); ++i)
        componentRows[i].assign(static_cast<std::size_t>(std::max(planes[i]->rect.width(), rect.width())), 0);
    for (std::vector<std::int32_t> &converted : convertedRows)
        converted.assign(width, 0);
    weighted.assign(width, 0.0);
}

void ConvertingSampler::convertRow(std::int64_t row)
{
    std::vector<const std::int32_t *> from;
    std::vector<std::int32_t *> to;
    for (std::size_t i = 0; i < planes.size(); ++i) {
        readRow(*planes[i], row, componentRows[i].data());
        from.push_back(componentRows[i].data());
    }
    for (std::vector<std::int32_t> &converted : convertedRows)
        to.push_back(converted.data());
    bandMap.convertRow(bands, from.data(), static_cast<int>(weighted.size()), to.data());
}

void ConvertingSampler::makeBlendedRow(std::int64_t row, double *numbers)
{
    convertRow(row);
    const auto count = static_cast<std::size_t>(columns->count());
    for (std::size_t band = 0; band < bands.size(); ++band) {
        const bool isWeighted = opacity >= 0 && static_cast<std::size_t>(opacity) != band;
        const CellKind kind = kindOf(band);
        for (std::size_t i = 0; i < weighted.size(); ++i) {
            const double weight = isWeighted ? convertedRows[static_cast<std::size_t>(opacity)][i] : 1.0;
            if (kind == CellKind::Whole)
                weighted[i] = convertedRows[band][i] * weight;
            else // what is hidden need not be a number
                weighted[i] = weight != 0.0 ? numberOfBits(kind, convertedRows[band][i]) * weight : 0.0;
        }
        blendRow(weighted.data(), *columns, numbers + band * count);
    }
}

void ConvertingSampler::sample(int y, std::int32_t *const *bandRows)
{
    const CellGrid::Tap tap = rows.at(y);
    const auto make = [this](std::int64_t row, double *numbers) { makeBlendedRow(row, numbers); };
    const double *upper = blended.row(tap.cell, make);
    const double *lower = tap.weight > 0.0 ? blended.row(tap.cell + 1, make) : upper;
    const auto count = static_cast<std::size_t>(columns->count());
    const auto between = [&](std::size_t at) { return upper[at] + (lower[at] - upper[at]) * tap.weight; };
    if (opacity >= 0)
        for (std::size_t i = 0; i < count; ++i)
            opacities[i] = between(static_cast<std::size_t>(opacity) * count + i);
    for (std::size_t band = 0; band < bands.size(); ++band) {
        const bool isWeighted = opacity >= 0 && static_cast<std::size_t>(opacity) != band;
        const CellKind kind = kindOf(band);
        for (std::size_t i = 0; i < count; ++i) {
            const double value = between(band * count + i);
            const double visible = isWeighted ? opacities[i] : 1.0;
            bandRows[band][i] = visible > 0.0 ? cellOf(kind, value / visible) : 0;
        }
    }
}

} // namespace xrv
