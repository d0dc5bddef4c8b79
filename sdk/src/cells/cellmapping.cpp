#include "cellmapping.h"

namespace xrv {

int CellMapping::bits() const
{
    int count = 1;
    while (count < 32 && largest >> count != 0)
        ++count;
    return count;
}

std::int32_t CellMapping::cellOf(std::uint32_t code) const
{
    const std::int64_t number = base + std::min(code, largest);
    const auto bits = static_cast<std::int32_t>(static_cast<std::uint32_t>(number));
    switch (form) {
    case Form::FloatBits:
        return ordered(bits);
    case Form::FloatSteps:
        return bitsOfFloat(static_cast<float>(static_cast<double>(number) / stepsPerUnit));
    default:
        return bits;
    }
}

std::uint32_t CellMapping::codeOf(std::int32_t cell) const
{
    std::int64_t number = cell;
    if (form == Form::FloatBits)
        number = ordered(cell);
    else if (form == Form::FloatSteps)
        number = std::llround(static_cast<double>(floatOfBits(cell)) * stepsPerUnit);
    return static_cast<std::uint32_t>(number) - static_cast<std::uint32_t>(base); // modulo 2^32, so without a sign too
}

} // namespace xrv
