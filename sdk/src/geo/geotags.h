#pragma once

#include <cstdint>

namespace xrv {

// Tags of GeoTIFF (OGC 19-008r4, annex B) and of the RPC note for TIFF.
constexpr std::uint32_t kTagPixelScale = 33550;
constexpr std::uint32_t kTagOldMatrix = 33920; ///< ModelTransformation before it had a number of its own
constexpr std::uint32_t kTagTiePoints = 33922;
constexpr std::uint32_t kTagMatrix = 34264;
constexpr std::uint32_t kTagGeoKeys = 34735;
constexpr std::uint32_t kTagGeoDoubles = 34736;
constexpr std::uint32_t kTagGeoAscii = 34737;
constexpr std::uint32_t kTagRpc = 50844;

} // namespace xrv
