#pragma once

#include "base/plane.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace xrv {

/// What the 32 bits of a cell mean while it is on its way in rows of std::int32_t.
enum class CellKind : std::uint8_t {
    Whole,    ///< a number with a sign
    Unsigned, ///< the bits of a number without one, as cells of 32 bits need them
    Float     ///< the bits of an IEEE 754 single
};

inline CellKind cellKindOf(SampleType type)
{
    return type == SampleType::Float    ? CellKind::Float
           : type == SampleType::UInt32 ? CellKind::Unsigned
                                        : CellKind::Whole;
}

inline float floatOfBits(std::int32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

inline std::int32_t bitsOfFloat(float value)
{
    std::int32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// The bits of a cell of any type, as rows hold them. Deeper ones than 32 bits are clamped.
template <typename Cell> std::int32_t bitsOfCell(Cell cell)
{
    using Limits = std::numeric_limits<std::int32_t>;
    if constexpr (sizeof(Cell) > sizeof(std::int32_t))
        return static_cast<std::int32_t>(std::clamp<Cell>(cell, Limits::min(), Limits::max()));
    else
        return static_cast<std::int32_t>(cell);
}
inline std::int32_t bitsOfCell(float cell)
{
    return bitsOfFloat(cell);
}

inline double numberOfBits(CellKind kind, std::int32_t bits)
{
    switch (kind) {
    case CellKind::Unsigned:
        return static_cast<std::uint32_t>(bits);
    case CellKind::Float:
        return static_cast<double>(floatOfBits(bits));
    default:
        return bits;
    }
}

/// The cell nearest to \a number, halves away from zero.
inline std::int32_t bitsOfNumber(CellKind kind, double number)
{
    if (kind == CellKind::Float)
        return bitsOfFloat(static_cast<float>(number));
    const double rounded = number + (number < 0.0 ? -0.5 : 0.5);
    if (kind == CellKind::Unsigned)
        return static_cast<std::int32_t>(
            static_cast<std::uint32_t>(std::clamp(rounded, 0.0, double(std::numeric_limits<std::uint32_t>::max()))));
    return static_cast<std::int32_t>(rounded);
}

} // namespace xrv
