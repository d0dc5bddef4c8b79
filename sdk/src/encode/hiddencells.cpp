#include "hiddencells.h"

#include <algorithm>
#include <cmath>

namespace xrv {

namespace {

bool holds(const XrvBand &band, double number)
{
    if (band.kind == CellKind::Float)
        return !std::isnan(number);
    const double lowest = band.isSigned ? -std::ldexp(1.0, band.bits - 1) : 0.0;
    return number >= lowest && number < lowest + std::ldexp(1.0, band.bits) && number == std::floor(number);
}

template <typename IsHidden>
void markBand(const std::int32_t *cells, std::size_t count, std::int32_t *opacity, IsHidden isHidden)
{
    for (std::size_t i = 0; i < count; ++i)
        if (!isHidden(cells[i]))
            opacity[i] = HiddenCells::kOpaque;
}

} // namespace

HiddenCells::HiddenCells(const std::vector<XrvBand> &bands, std::optional<double> noData)
{
    for (const XrvBand &band : bands) {
        const bool isThere = noData && holds(band, *noData);
        values.push_back({band.kind, isThere, isThere ? bitsOfNumber(band.kind, *noData) : 0});
        isPossible = isPossible && (isThere || band.kind == CellKind::Float);
    }
}

void HiddenCells::mark(const std::vector<std::int32_t *> &planes, std::size_t count, std::int32_t *opacity) const
{
    std::fill_n(opacity, count, 0);
    for (std::size_t band = 0; band < values.size(); ++band) {
        const BandValue &value = values[band];
        if (value.kind == CellKind::Float) {
            const float noData = floatOfBits(value.bits);
            markBand(planes[band], count, opacity, [&](std::int32_t bits) {
                const float cell = floatOfBits(bits);
                return std::isnan(cell) || (value.isThere && cell == noData);
            });
        } else {
            markBand(planes[band], count, opacity,
                     [&](std::int32_t bits) { return value.isThere && bits == value.bits; });
        }
    }
}

} // namespace xrv
