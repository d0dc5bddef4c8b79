#pragma once

#include "../container/jp2structure.h"
#include "placement.h"

#include <string>
#include <vector>

namespace xrv {

/// A srsName attribute, taken apart.
struct SrsName
{
    int epsg = 0; ///< 0: not a name in the EPSG register
    /// Coordinates come in the order of the register's axes. That is so for the URN ("urn:ogc:def:crs:EPSG::4326") and
    /// the address ("http://www.opengis.net/def/crs/EPSG/0/4326"); "EPSG:4326", ".../epsg.xml#4326" and OGC's CRS84,
    /// CRS83 and CRS27 are x before y (OGC 07-092r3, OGC 05-096r1 7.3).
    bool isRegisterOrder = false;
    std::string dictionaryEntry; ///< gml:id of a definition in the file itself, "gmljp2://xml/CRSDictionary.gml#id"
};

SrsName parseSrsName(const std::string &name);

/// The first rectified grid of GML in JP2 (OGC 05-047r3 and 08-085r8; a ReferenceableGridCoverage's too), looked for in
/// the root instance and then in the other texts. Its origin is the centre of cell (0, 0), the first of its offset
/// vectors the step along a row. Without a grid, only the system of an Envelope. Damage gives a warning.
///
/// Axis order: that of the register where the srsName says so (see SrsName), unless the grid's axisName elements say
/// easting or longitude first. Some writers give the offset vectors in x, y order all the same. Both readings of a
/// north-first system are therefore compared: the one whose rows run along the first and whose columns run along the
/// second axis wins; for a turned grid the one that does not mirror the picture. An origin that as latitude and
/// longitude lies off the globe is taken as longitude and latitude.
Placement readGml(const std::vector<LabelledXml> &texts, std::vector<std::string> *warnings);

} // namespace xrv
