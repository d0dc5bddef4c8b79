#pragma once

#include <cmath>

namespace Korvane {

/// One axis of the map: the world from \c world1 to \c world2 is shown by the device from \c device1 to \c device2.
struct DeviceAxis
{
    double device1;
    double device2;
    double world1;
    double world2;

    double toDevice(double world) const
    {
        return device1 + (world - world1) * ((device2 - device1) / (world2 - world1));
    }
    double toWorld(double device) const
    {
        return world1 + (device - device1) * ((world2 - world1) / (device2 - device1));
    }
};

/// The device pixel border that \a coordinate is rounded to. Everything that has an edge at the same place in the world
/// uses this, so that neighbours neither overlap nor leave a gap.
inline double roundedEdge(double coordinate)
{
    return std::floor(coordinate + 0.5);
}

} // namespace Korvane
