#pragma once

#include "geo/georeference.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// The tags of a GeoTIFF file that tell its place (OGC 19-008r4, annex B) and its RPC coefficients. Empty: not there.
struct GeoTags
{
    std::vector<double> pixelScale, tiePoints, matrix;
    std::vector<std::uint16_t> keys;
    std::vector<double> keyDoubles;
    std::string keyTexts;
    std::vector<double> rpc; ///< 92 numbers

    bool isEmpty() const;
};

/// Those of the contents of a GeoJP2 box.
GeoTags geoTagsOf(const Bytes &geoTiff);
/// Tags that say what \a place does; with a code of the EPSG register where it has one, else with its names.
GeoTags makeGeoTags(const GeoReference &place);
/// The contents of a GeoJP2 box: a TIFF file of one cell with \a tags.
Bytes makeGeoTiff(const GeoTags &tags);

} // namespace xrv
