#pragma once

#include "terrain.h"

#include <string>

/// Where a north-up picture lies on the map.
struct MapPlace
{
    double left = 0.0;     ///< easting of the top-left corner, in metres
    double top = 0.0;      ///< northing of the top-left corner, in metres
    double cellSize = 1.0; ///< in metres
    int epsg = 0;          ///< projected reference system, by its EPSG number
};

/// Writes \a picture as a JP2 file with a GeoJP2 box. On failure returns a sentence, else an empty text.
std::string writeGeoJp2(const std::string &path, const RgbPicture &picture, const MapPlace &place);
