#pragma once

#include "crsnames.h"
#include "tifffile.h"

#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// What the keys of GeoKeyDirectory tell (OGC 19-008r4, 7.1.2 and annex D).
struct GeoKeys
{
    bool isPixelPoint = false; ///< GTRasterTypeGeoKey
    std::optional<CrsDescription> crs;
};

/// Reads them; without the tag, or where libgeotiff refuses it, nothing is set.
GeoKeys readGeoKeys(const TiffFile &tiff, std::vector<std::string> *warnings);

} // namespace xrv
