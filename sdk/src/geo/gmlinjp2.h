#pragma once

#include "placement.h"

#include "container/jp2structure.h"

#include <string>
#include <vector>

namespace xrv {

/// The first rectified grid of GML in JP2 (OGC 05-047r3 and 08-085r8; a ReferenceableGridCoverage's too), looked for in
/// the root instance and then in the other texts. Its origin is the centre of cell (0, 0), the first of its offset
/// vectors the step along a row. Without a grid, only the system of an Envelope. Damage gives a warning.
///
/// Axis order: that of the register where the srsName says so (see SrsName), unless the grid's axisName elements say
/// easting or longitude first. Some writers give the offset vectors in x, y order all the same; they are taken so if
/// the register's order would make a mirrored picture that does not lie along the axes, which no camera takes. An
/// origin that as latitude and longitude lies off the globe is taken as longitude and latitude.
Placement readGml(const std::vector<LabelledXml> &texts, std::vector<std::string> *warnings);

} // namespace xrv
