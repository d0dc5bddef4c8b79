#include "bytemap.h"

#include <algorithm>
#include <cmath>

namespace xrv {

ByteMap::ByteMap(int bits, bool isSigned, CellKind kind)
    : bits(bits)
    , isSigned(isSigned)
    , kind(kind)
    , lowest(isSigned ? -(std::int64_t(1) << (bits - 1)) : 0)
    , highest((std::int64_t(1) << (isSigned ? bits - 1 : bits)) - 1)
{
}

std::shared_ptr<const ByteMap> ByteMap::byDepth(int bits, bool isSigned, bool scaleUp, CellKind kind)
{
    std::shared_ptr<ByteMap> map(new ByteMap(bits, isSigned, kind));
    map->scaleUp = scaleUp;
    map->identity = bits == 8 && !isSigned;
    map->byTransform = kind == CellKind::Float;
    map->makeTable();
    return map;
}

std::shared_ptr<const ByteMap> ByteMap::byRange(int bits, bool isSigned, double minimum, double maximum, CellKind kind)
{
    std::shared_ptr<ByteMap> map(new ByteMap(bits, isSigned, kind));
    map->byTransform = true;
    map->minimum = minimum;
    map->maximum = maximum;
    map->makeTable();
    return map;
}

void ByteMap::makeTable()
{
    if (bits > 16)
        return;
    const std::int64_t size = bits <= 8 ? 256 : 65536;
    table.resize(static_cast<std::size_t>(size));
    for (std::int64_t pattern = 0; pattern < size; ++pattern) {
        const std::int64_t cell = isSigned && pattern >= size / 2 ? pattern - size : pattern;
        table[static_cast<std::size_t>(pattern)] = calculate(std::clamp(cell, lowest, highest));
    }
}

std::uint8_t ByteMap::stretch(double value) const
{
    if (!(maximum > minimum) || std::isnan(value))
        return value > minimum ? 255 : 0;
    const double scaled = (value - minimum) / (maximum - minimum) * 255.0;
    return static_cast<std::uint8_t>(std::clamp(scaled, 0.0, 255.0) + 0.5);
}

void ByteMap::convertRow(const std::int32_t *cells, std::size_t count, std::uint8_t *bytes) const
{
    const auto convert = [=](auto byteOf) {
        for (std::size_t i = 0; i < count; ++i)
            bytes[i] = byteOf(cells[i]);
    };
    if (kind == CellKind::Float)
        convert([this](std::int32_t cell) { return atFloat(floatOfBits(cell)); });
    else if (kind == CellKind::Unsigned)
        convert([this](std::int32_t cell) { return at(static_cast<std::int64_t>(static_cast<std::uint32_t>(cell))); });
    else
        convert([this](std::int32_t cell) { return at(static_cast<std::int64_t>(cell)); });
}

std::uint8_t ByteMap::calculate(std::int64_t cell) const
{
    if (byTransform)
        return stretch(static_cast<double>(cell));
    const std::int64_t fromBottom = cell - lowest;
    if (bits >= 8)
        return static_cast<std::uint8_t>(fromBottom >> (bits - 8));
    const std::int64_t top = highest - lowest;
    return static_cast<std::uint8_t>(scaleUp ? (fromBottom * 255 + top / 2) / top : fromBottom);
}

const std::uint8_t *ByteMap::tableForStored(std::size_t bytes, bool storedSigned) const
{
    const std::size_t patterns = bytes == 1 ? 256 : bytes == 2 ? 65536 : 0;
    return patterns != 0 && table.size() == patterns && storedSigned == isSigned ? table.data() : nullptr;
}

} // namespace xrv
