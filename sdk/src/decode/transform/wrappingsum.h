#pragma once

#include <type_traits>

namespace xrv {

// Sums that go around: damaged files hold coefficients of any size.
template <typename T> inline T sumOf(T a, T b)
{
    using Unsigned = std::make_unsigned_t<T>;
    return static_cast<T>(static_cast<Unsigned>(a) + static_cast<Unsigned>(b));
}
template <typename T> inline T differenceOf(T a, T b)
{
    using Unsigned = std::make_unsigned_t<T>;
    return static_cast<T>(static_cast<Unsigned>(a) - static_cast<Unsigned>(b));
}

} // namespace xrv
