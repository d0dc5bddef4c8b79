#include "georeference.h"

#include "geojp2.h"
#include "gmlinjp2.h"
#include "worldfile.h"

#include <algorithm>
#include <cmath>

namespace xrv {

namespace {

using Origin = GeoReference::Origin;

struct Source
{
    Origin origin;
    const char *name;
    Placement placement;
};

Placement fromGeoJp2(const Jp2Structure &structure, std::vector<std::string> *warnings)
{
    Placement result;
    for (const UuidBox &box : structure.uuidBoxes) {
        if (box.uuid != kGeoJp2Uuid)
            continue;
        const Placement found = readGeoTiff(box.content, warnings);
        if (!result.crs)
            result.crs = found.crs;
        result.transform = found.transform;
        if (result.transform)
            break;
    }
    return result;
}

/// Whether two transforms put every corner of the image at the same place to a tenth of a cell; world files round.
bool agree(const Transform &a, const Transform &b, double width, double height)
{
    const double cell = std::max({std::abs(a[1]), std::abs(a[2]), std::abs(a[4]), std::abs(a[5])});
    for (double column : {0.0, width}) {
        for (double row : {0.0, height}) {
            const double dx = a[0] - b[0] + column * (a[1] - b[1]) + row * (a[2] - b[2]);
            const double dy = a[3] - b[3] + column * (a[4] - b[4]) + row * (a[5] - b[5]);
            if (!(std::hypot(dx, dy) <= 0.1 * cell))
                return false;
        }
    }
    return true;
}

void warnOfDisagreement(const Source &chosen, const Source &other, double width, double height,
                        std::vector<std::string> *warnings)
{
    const std::optional<Transform> &a = chosen.placement.transform, &b = other.placement.transform;
    if (a && b && !agree(*a, *b, width, height))
        warnings->push_back(std::string("The ") + chosen.name + " and the " + other.name +
                            " put the image at different places; the " + chosen.name + " is used.");
}

void warnOfOtherSystem(const Source &chosen, const Source &other, std::vector<std::string> *warnings)
{
    const int a = chosen.placement.crs ? chosen.placement.crs->epsg : 0;
    const int b = other.placement.crs ? other.placement.crs->epsg : 0;
    if (a != 0 && b != 0 && a != b)
        warnings->push_back(std::string("The ") + chosen.name + " names EPSG:" + std::to_string(a) + ", the " +
                            other.name + " EPSG:" + std::to_string(b) + "; the former is used.");
}

/// The first source whose placement has \a part.
template <typename Part> const Source *firstWith(const std::vector<Source> &sources, Part Placement::*part)
{
    const auto found = std::find_if(sources.begin(), sources.end(),
                                    [part](const Source &source) { return (source.placement.*part).has_value(); });
    return found == sources.end() ? nullptr : &*found;
}

} // namespace

double GeoReference::incrementX() const
{
    const double length = std::hypot(transform[1], transform[4]);
    return transform[1] < 0 ? -length : length;
}

double GeoReference::incrementY() const
{
    // The rows and columns of a picture that is not mirrored enclose an area that is negative where y grows upwards.
    const bool isMirrored = transform[1] * transform[5] - transform[2] * transform[4] > 0;
    const double length = std::hypot(transform[2], transform[5]);
    return isMirrored == (transform[1] >= 0) ? length : -length;
}

double GeoReference::clockwiseRotationDegrees() const
{
    constexpr double kDegreesPerRadian = 57.295779513082320877;
    if (transform[4] == 0)
        return 0;
    // A row that runs west is one with a negative increment, so that the angle stays within a quarter turn.
    const double sign = transform[1] < 0 ? -1 : 1;
    return std::atan2(-transform[4] * sign, transform[1] * sign) * kDegreesPerRadian;
}

GeoReference readGeoReference(const Jp2Structure &structure, std::uint32_t width, std::uint32_t height,
                              const std::string &localName, std::vector<std::string> *warnings)
{
    const std::vector<Source> sources = {
        {Origin::GeoJp2, "GeoTIFF header", fromGeoJp2(structure, warnings)},
        {Origin::Gml, "GML box", readGml(structure.gml, warnings)},
        {Origin::WorldFile, "world file", {readWorldFile(localName, warnings), std::nullopt}},
    };
    GeoReference result;
    const Source *place = firstWith(sources, &Placement::transform);
    const Source *system = firstWith(sources, &Placement::crs);
    if (place) {
        result.origin = place->origin;
        result.transform = *place->placement.transform;
    }
    if (system) {
        const CrsDescription &crs = *system->placement.crs;
        result.epsg = crs.epsg;
        result.datum = crs.datum;
        result.projection = crs.projection;
        result.units = place ? crs.units : PLK_UNITS_INVALID;
    }
    for (const Source &source : sources) {
        if (place && &source > place)
            warnOfDisagreement(*place, source, width, height, warnings);
        if (system && &source > system)
            warnOfOtherSystem(*system, source, warnings);
    }
    return result;
}

} // namespace xrv
