#pragma once

#include "placement.h"

#include "container/jp2structure.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// UUID of the GeoJP2 box, whose contents are a GeoTIFF file with a picture of one cell ("GeoTIFF box").
constexpr std::array<std::uint8_t, 16> kGeoJp2Uuid{0xb1, 0x4b, 0xf8, 0xbd, 0x08, 0x3d, 0x4b, 0x43,
                                                   0xa5, 0xae, 0x8c, 0xd7, 0xd5, 0xa6, 0xce, 0x03};

/// What the contents of a GeoJP2 box tell (OGC 19-008r4, GeoTIFF 1.1).
/// - Place: ModelPixelScale with the first of the ModelTiepoints, else ModelTransformation. Rows run north to south
/// whatever
///   the sign of ScaleY, because writers disagree on it. With the raster type "pixel is point" the numbers are those of
///   cell centres. Tie points alone give no place and a warning.
/// - System: EPSG codes 1024 to 32766. A user-defined projection that is a zone of UTM on a common datum gets its code;
/// others
///   get names only. Linear units that contradict the coded system win over it, which then loses its code, with a
///   warning.
/// Damage gives a warning, and what could be read before it.
Placement readGeoTiff(const Bytes &content, std::vector<std::string> *warnings);

/// The 92 numbers of the tag RPCCoefficientTag (50844), if \a content has it. Another count, and numbers that are none,
/// are nothing and a warning.
std::optional<std::array<double, 92>> readRpcTag(const Bytes &content, std::vector<std::string> *warnings);

} // namespace xrv
