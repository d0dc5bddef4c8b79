#include "geojp2.h"

#include "geokeys.h"
#include "geotags.h"
#include "tifffile.h"

#include <algorithm>
#include <cmath>

namespace xrv {

namespace {

constexpr std::size_t kTiePointNumbers = 6; // column, row, level, x, y, z
constexpr std::size_t kMatrixNumbers = 16;

/// Of cell corners or centres, as the raster type has it.
std::optional<Transform> modelTransform(const TiffFile &tiff, std::vector<std::string> *warnings)
{
    const std::vector<double> scale = tiff.doubles(kTagPixelScale), tie = tiff.doubles(kTagTiePoints);
    std::vector<double> matrix = tiff.doubles(kTagMatrix);
    if (matrix.size() < kMatrixNumbers)
        matrix = tiff.doubles(kTagOldMatrix);
    if (scale.size() >= 2 && scale[0] != 0 && scale[1] != 0 && tie.size() >= kTiePointNumbers) {
        const double sx = scale[0], sy = std::abs(scale[1]);
        return Transform{tie[3] - tie[0] * sx, sx, 0, tie[4] + tie[1] * sy, 0, -sy};
    }
    if (matrix.size() >= kMatrixNumbers)
        return Transform{matrix[3], matrix[0], matrix[1], matrix[7], matrix[4], matrix[5]};
    if (!tie.empty())
        warnings->push_back("The GeoTIFF header has tie points without a cell size; they are not used.");
    return std::nullopt;
}

} // namespace

Placement readGeoTiff(const Bytes &content, std::vector<std::string> *warnings)
{
    const TiffFile tiff(content);
    if (!tiff.isOpen()) {
        warnings->push_back("The GeoTIFF header is damaged" +
                            (tiff.firstError().empty() ? "." : " (" + tiff.firstError() + ")."));
        return {};
    }
    Placement result;
    const GeoKeys keys = readGeoKeys(tiff, warnings);
    result.crs = keys.crs;
    result.transform = modelTransform(tiff, warnings);
    if (result.transform && keys.isPixelPoint)
        result.transform = fromCentres(*result.transform);
    if (result.transform && !isUsable(*result.transform)) {
        warnings->push_back("The GeoTIFF header has a place that is no place; it is not used.");
        result.transform.reset();
    }
    return result;
}

std::optional<std::array<double, 92>> readRpcTag(const Bytes &content, std::vector<std::string> *warnings)
{
    const TiffFile tiff(content);
    const std::vector<double> found = tiff.doubles(kTagRpc);
    std::array<double, 92> values{};
    if (found.empty())
        return std::nullopt;
    const bool isFinite = std::all_of(found.begin(), found.end(), [](double v) { return std::isfinite(v); });
    if (found.size() != values.size() || !isFinite) {
        warnings->push_back("The RPC coefficients of the GeoTIFF header are damaged and are not used.");
        return std::nullopt;
    }
    std::copy(found.begin(), found.end(), values.begin());
    return values;
}

} // namespace xrv
