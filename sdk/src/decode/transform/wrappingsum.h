#pragma once

#include <cstdint>

namespace xrv {

// Sums that go around: damaged files hold coefficients of any size.
inline std::int32_t sumOf(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
inline std::int32_t differenceOf(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

} // namespace xrv
