#pragma once

#include <xrv60/plktypes.h>

#include <mutex>
#include <string>

struct pj_ctx;

namespace xrv {

/// What is told of a coordinate reference system. Names are for people:
/// - datum: name of the geodetic system below, as the EPSG register has it ("ETRS89", "NAD83", "RGF93 v1"); the blank
/// of
///   "WGS 84" and "WGS 72" is left out.
/// - projection: the register's name of the conversion ("UTM zone 33N", "Lambert-93", "British National Grid"); the
/// name of
///   the method for a projection that is not in the register ("Transverse Mercator"); "GEODETIC" for geographic
///   systems, "GEOCENTRIC" for geocentric ones.
/// A code that PROJ's database does not know has "EPSG:code" for both.
struct CrsDescription
{
    int epsg = 0; ///< 0: not in the register
    std::string datum = "RAW";
    std::string projection = "RAW";
    PLKCellSizeUnits units = PLK_UNITS_INVALID; ///< of the axes; invalid for other units than the three
    double unitFactor = 0;                      ///< metres or degrees per unit, 0 where unknown
    bool isNorthFirst = false;                  ///< the register has latitude or northing as the first axis
};

/// The EPSG code \a code. The first look-up of a code asks PROJ's database (about a millisecond, the first one of the
/// process some more), later ones are answered from memory. Without a database the names are made from the code, and
/// units and axis order are known for the common systems only. Any thread.
CrsDescription crsOfEpsg(int code);

/// Prefers the proj.db in \a folder (UTF-8) to the one that PROJ finds itself. A folder without a proj.db that PROJ can
/// use is ignored; an empty name goes back to PROJ's own. Any thread.
void setGeodeticDataPath(const std::string &folder);

/// Unit for a factor: \a isAngle and degrees per unit, or metres per unit (both kinds of foot are feet).
PLKCellSizeUnits unitsOfFactor(bool isAngle, double factor);

/// PROJ's context of the process, which only the holder of this lock may use. None of the functions above may be called
/// meanwhile.
class ProjLock
{
public:
    ProjLock();
    pj_ctx *context() const;

private:
    std::unique_lock<std::mutex> lock;
};

} // namespace xrv
