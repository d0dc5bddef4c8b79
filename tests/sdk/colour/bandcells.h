#pragma once

#include "colour/bandmap.h"

#include <vector>

inline xrv::ComponentInfo component(int bits, bool isSigned = false, std::uint32_t step = 1)
{
    xrv::ComponentInfo info;
    info.bits = static_cast<std::uint8_t>(bits);
    info.isSigned = isSigned;
    info.stepX = info.stepY = step;
    return info;
}

using Rows = std::vector<std::vector<std::int32_t>>;

/// A row of each of \a bands, from a row of each component.
inline Rows convert(const xrv::BandMap &map, const std::vector<int> &bands, const Rows &components)
{
    const std::size_t width = components.front().size();
    Rows result(bands.size(), std::vector<std::int32_t>(width, -99));
    std::vector<const std::int32_t *> in;
    std::vector<std::int32_t *> out;
    for (const int number : map.componentsFor(bands))
        in.push_back(components[static_cast<std::size_t>(number)].data());
    for (auto &row : result)
        out.push_back(row.data());
    map.convertRow(bands, in.data(), static_cast<int>(width), out.data());
    return result;
}
