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

/// What the cells of a file are.
enum class Bands {
    Colours, ///< red, green and blue of 8 bits, as on a screen
    Sensor   ///< red, green, blue and near infrared of 16 bits, dark but for a few glints, as a satellite delivers them
};

/// Writes \a picture as a JP2 file with a GeoJP2 box. On failure returns a sentence, else an empty text.
std::string writeGeoJp2(const std::string &path, const RgbPicture &picture, const MapPlace &place, Bands bands);
