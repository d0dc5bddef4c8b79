#pragma once

#include <cstdint>
#include <string>

namespace xrv {

/// A box type as a number, first character in the highest byte.
constexpr std::uint32_t boxType(const char (&name)[5])
{
    std::uint32_t type = 0;
    for (int i = 0; i < 4; ++i)
        type = type << 8 | static_cast<std::uint8_t>(name[i]);
    return type;
}

/// All four characters can be printed, as those of every registered type can.
bool isPlausibleBoxType(std::uint32_t type);

/// For messages: the four characters, those that cannot be printed as question marks.
std::string boxTypeName(std::uint32_t type);

} // namespace xrv
