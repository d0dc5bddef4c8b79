#pragma once

#include "container/jp2structure.h"

#include <xrv60/plktypes.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// Where an image lies in the world.
struct GeoReference
{
    enum class Origin { None, GeoJp2, Gml, WorldFile, XrvInfo };
    Origin origin = Origin::None;
    /// Of the corners of cells: x = t[0] + t[1] column + t[2] row, y = t[3] + t[4] column + t[5] row. x is easting or
    /// longitude and y northing or latitude, whatever the axis order of the reference system.
    std::array<double, 6> transform{0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    PLKCellSizeUnits units = PLK_UNITS_INVALID; ///< of the transform; invalid without a place, when it counts cells
    int epsg = 0;                               ///< 0: none or not in the EPSG register
    std::string datum = "RAW";                  ///< "RAW" without one
    std::string projection = "RAW";             ///< "RAW" without one; "GEODETIC" for geographic systems

    // A turned grid as PLKFileInfo has it: with the clockwise angle r, a step along a row goes incrementX (cos r, -sin
    // r), a step down a column incrementY (sin r, cos r). r lies within a quarter turn; rows that run west have a
    // negative incrementX.
    double incrementX() const;
    double incrementY() const; ///< negative for north-up images
    double clockwiseRotationDegrees() const;
};

/// Finds the geo-reference. Order: GeoJP2 box, GML in JP2, world file (its transform; the reference system stays that
/// of the boxes if they have one without a place). \a localName is the UTF-8 path of a local file, empty for streams.
/// Damage is put into \a warnings as sentences, and so is a source that puts a corner of the image (\a width x \a
/// height cells) more than a tenth of a cell elsewhere than the one used, or names another EPSG code. Any thread.
GeoReference readGeoReference(const Jp2Structure &structure, std::uint32_t width, std::uint32_t height,
                              const std::string &localName, std::vector<std::string> *warnings);

/// Rational polynomial coefficients: from the GeoJP2 box, else from the side files _RPC.TXT, _rpc.txt, .RPB (also in
/// capitals). Without any, or with damaged ones (then a warning), nothing. Error bias and error random are -1 where a
/// side file does not tell them. Any thread.
std::optional<PLKRPCData> readRpc(const Jp2Structure &structure, const std::string &localName,
                                  std::vector<std::string> *warnings);

} // namespace xrv
