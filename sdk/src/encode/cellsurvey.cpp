#include "cellsurvey.h"

#include <algorithm>

namespace xrv {

void BandSurvey::StepChain::add(std::int32_t floatBits)
{
    CellMapping mapping;
    mapping.form = CellMapping::Form::FloatSteps;
    const auto value = static_cast<double>(floatOfBits(floatBits));
    // A cell that is a whole number of steps is one of finer ones, too, so those before need no second look.
    for (; steps != 0.0; steps = steps < most ? steps * factor : 0.0) {
        if (!(std::abs(value * steps) < std::numeric_limits<std::int32_t>::max())) {
            steps = 0.0;
            return;
        }
        mapping.stepsPerUnit = steps;
        mapping.base = std::llround(value * steps);
        if (mapping.cellOf(0) == floatBits)
            return;
    }
}

std::int64_t BandSurvey::numberOf(std::int32_t cell) const
{
    return band.kind == CellKind::Float      ? CellMapping::ordered(cell)
           : band.kind == CellKind::Unsigned ? static_cast<std::int64_t>(static_cast<std::uint32_t>(cell))
                                             : cell;
}

void BandSurvey::add(std::int32_t cell, Range *range) const
{
    const std::int64_t number = numberOf(cell);
    range->smallest = std::min(range->smallest, number);
    range->largest = std::max(range->largest, number);
    if (band.kind == CellKind::Float) {
        range->binary.add(cell);
        range->decimal.add(cell);
    }
}

void BandSurvey::add(const std::int32_t *cells, std::size_t count, const std::int32_t *opacity)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (!opacity || opacity[i] != 0) {
            add(cells[i], &visible);
            continue;
        }
        if (hidden.isEmpty())
            hiddenCell = cells[i];
        isHiddenAlike = isHiddenAlike && cells[i] == hiddenCell;
        add(cells[i], &hidden);
    }
}

/// All hidden cells are one value: what is coded in their place means nothing. Else they are coded like the others.
BandSurvey::Range BandSurvey::coded() const
{
    Range range = visible;
    if (!isHiddenAlike) {
        range.smallest = std::min(range.smallest, hidden.smallest);
        range.largest = std::max(range.largest, hidden.largest);
        range.binary.join(hidden.binary);
        range.decimal.join(hidden.decimal);
    }
    return range;
}

void BandSurvey::narrowToSteps(const Range &range, const StepChain &chain, CellMapping *mapping)
{
    const double steps = chain.stepsPerUnit();
    if (steps == 0.0)
        return;
    const auto valueOf = [](std::int64_t number) {
        return static_cast<double>(floatOfBits(CellMapping::ordered(static_cast<std::int32_t>(number))));
    };
    CellMapping narrower = *mapping;
    narrower.form = CellMapping::Form::FloatSteps;
    narrower.stepsPerUnit = steps;
    narrower.base = std::llround(valueOf(range.smallest) * steps);
    narrower.largest = static_cast<std::uint32_t>(std::llround(valueOf(range.largest) * steps) - narrower.base);
    // Averages of steps are averages of cells, so they are the better ones, too.
    if (narrower.bits() <= mapping->bits())
        *mapping = narrower;
}

CellMapping BandSurvey::mapping(int mostBits) const
{
    const Range range = coded();
    CellMapping mapping;
    mapping.form = band.kind == CellKind::Float ? CellMapping::Form::FloatBits : CellMapping::Form::Whole;
    if (!hidden.isEmpty() && isHiddenAlike)
        mapping.hidden = hiddenCell;
    if (range.isEmpty())
        return mapping;
    mapping.base = range.smallest;
    mapping.largest = static_cast<std::uint32_t>(range.largest - range.smallest);
    if (mapping.isFloat()) {
        narrowToSteps(range, range.binary, &mapping);
        narrowToSteps(range, range.decimal, &mapping);
    }
    mapping.lowBits = static_cast<std::uint8_t>(std::max(0, mapping.bits() - mostBits));
    return mapping;
}

int BandSurvey::neededBits() const
{
    int bits = 1;
    for (const Range &range : {visible, hidden}) {
        if (range.isEmpty())
            continue;
        const int sign = band.isSigned ? 1 : 0;
        while (range.smallest < -(std::int64_t(sign) << (bits - 1)) || range.largest >= std::int64_t(1)
                                                                                            << (bits - sign))
            ++bits;
    }
    return bits;
}

} // namespace xrv
