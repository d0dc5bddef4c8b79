#pragma once

#include "../container/jp2structure.h"

#include <xrv60/plktypes.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace xrv {

/// Where an image lies in the world.
struct GeoReference
{
    enum class Origin { None, GeoJp2, Gml, WorldFile };
    Origin origin = Origin::None;
    /// Of the corners of cells: x = t[0] + t[1] column + t[2] row, y = t[3] + t[4] column + t[5] row. x is easting or
    /// longitude and y northing or latitude, whatever the axis order of the reference system.
    std::array<double, 6> transform{0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    PLKCellSizeUnits units = PLK_UNITS_INVALID;
    int epsg = 0;                   ///< 0: none or not in the EPSG register
    std::string datum = "RAW";      ///< "RAW" without one
    std::string projection = "RAW"; ///< "RAW" without one; "GEODETIC" for geographic systems

    double incrementX() const; ///< length of a cell's step along a row with its sign
    double incrementY() const; ///< of a step down a column, negative for north-up images
    double clockwiseRotationDegrees() const;
};

/// Finds the geo-reference. Order: GeoJP2 box, GML in JP2, world file (its transform; the reference system stays that
/// of the boxes if they have one without a place). \a localName is the UTF-8 path of a local file, empty for streams.
/// Damage is put into \a warnings as sentences.
GeoReference readGeoReference(const Jp2Structure &structure, std::uint32_t width, std::uint32_t height,
                              const std::string &localName, std::vector<std::string> *warnings);

/// Rational polynomial coefficients: from the GeoJP2 box, else from the side files _RPC.TXT, _rpc.txt, .RPB (also in
/// capitals). Without any, or with damaged ones (then a warning), nothing.
std::optional<PLKRPCData> readRpc(const Jp2Structure &structure, const std::string &localName,
                                  std::vector<std::string> *warnings);

} // namespace xrv
