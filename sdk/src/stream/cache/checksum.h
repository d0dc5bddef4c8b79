#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace xrv {

/// XXH64 (xxHash specification 0.1.1, "XXH64 algorithm description"): quick, finds accidents, keeps no secrets.
std::uint64_t checksum64(const void *data, std::size_t length, std::uint64_t seed);

/// Of a text, as 16 hexadecimal digits.
std::string checksumText(const std::string &text, std::uint64_t seed);

} // namespace xrv
