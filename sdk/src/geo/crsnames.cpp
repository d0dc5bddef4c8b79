#include "crsnames.h"

#include <proj.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

namespace fs = std::filesystem;

namespace xrv {

namespace {

struct ContextDeleter
{
    void operator()(PJ_CONTEXT *context) const { proj_context_destroy(context); }
};
struct ObjectDeleter
{
    void operator()(PJ *object) const { proj_destroy(object); }
};
using ContextPtr = std::unique_ptr<PJ_CONTEXT, ContextDeleter>;
using ObjectPtr = std::unique_ptr<PJ, ObjectDeleter>;

// More systems than anyone opens in a day; a folder of hostile files must not fill the memory.
constexpr std::size_t kMaxKnown = 2000;

/// Guarded by mutex.
struct Projections
{
    std::mutex mutex;
    ContextPtr context;
    std::map<int, CrsDescription> known;
    std::string dataPath;
};

Projections &projections()
{
    static Projections instance;
    return instance;
}

ContextPtr newContext(const std::string &dataPath)
{
    ContextPtr context(proj_context_create());
    // Some of PROJ's messages go to standard error at any log level.
    proj_log_func(context.get(), nullptr, [](void *, int, const char *) {});
    // A file must not open slower, or differently, for what a server far away says.
    proj_context_set_enable_network(context.get(), 0);
    if (!dataPath.empty() && !proj_context_set_database_path(context.get(), dataPath.c_str(), nullptr, nullptr))
        proj_context_set_database_path(context.get(), nullptr, nullptr, nullptr);
    return context;
}

std::string nameOf(const PJ *object)
{
    const char *name = object ? proj_get_name(object) : nullptr;
    return name && std::strcmp(name, "unknown") != 0 ? name : "";
}

std::string shortDatumName(const std::string &name)
{
    return name == "WGS 84" || name == "WGS 72" ? name.substr(0, 3) + name.substr(4) : name;
}

struct Axis
{
    std::string name, direction, unit;
    double factor = 0;
};

std::optional<Axis> axisOf(PJ_CONTEXT *context, const PJ *system, int index)
{
    const char *name = nullptr, *direction = nullptr, *unit = nullptr;
    Axis axis;
    if (!proj_cs_get_axis_info(context, system, index, &name, nullptr, &direction, &axis.factor, &unit, nullptr,
                               nullptr))
        return std::nullopt;
    axis.name = name ? name : "";
    axis.direction = direction ? direction : "";
    axis.unit = unit ? unit : "";
    return axis;
}

bool isVertical(const std::string &direction)
{
    return direction == "north" || direction == "south";
}

bool isNorthBeforeEast(const Axis &first, const Axis &second)
{
    // Both axes of a polar system run along meridians; there only the names tell.
    if (isVertical(first.direction) && isVertical(second.direction))
        return first.name.compare(0, 8, "Northing") == 0;
    return isVertical(first.direction) && !isVertical(second.direction);
}

void describeAxes(PJ_CONTEXT *context, const PJ *crs, bool isAngle, CrsDescription *result)
{
    const ObjectPtr system(proj_crs_get_coordinate_system(context, crs));
    if (!system)
        return;
    const std::optional<Axis> first = axisOf(context, system.get(), 0), second = axisOf(context, system.get(), 1);
    if (!first || !second)
        return;
    constexpr double kDegreesPerRadian = 57.295779513082320877;
    result->unitFactor = first->factor * (isAngle ? kDegreesPerRadian : 1);
    result->units = unitsOfFactor(isAngle, result->unitFactor);
    result->isNorthFirst = isNorthBeforeEast(*first, *second);
}

std::string conversionName(PJ_CONTEXT *context, const PJ *crs)
{
    const ObjectPtr conversion(proj_crs_get_coordoperation(context, crs));
    std::string name = nameOf(conversion.get());
    const char *method = nullptr;
    if (conversion && (name.empty() || name == "unnamed") &&
        proj_coordoperation_get_method_info(context, conversion.get(), &method, nullptr, nullptr) && method)
        name = method;
    return name;
}

/// The horizontal part of a compound or bound system.
ObjectPtr horizontalPart(PJ_CONTEXT *context, ObjectPtr crs)
{
    for (int depth = 0; crs && depth < 8; ++depth) {
        const PJ_TYPE type = proj_get_type(crs.get());
        if (type == PJ_TYPE_COMPOUND_CRS)
            crs.reset(proj_crs_get_sub_crs(context, crs.get(), 0));
        else if (type == PJ_TYPE_BOUND_CRS)
            crs.reset(proj_get_source_crs(context, crs.get()));
        else
            break;
    }
    return crs;
}

bool describe(PJ_CONTEXT *context, ObjectPtr object, CrsDescription *result)
{
    const ObjectPtr crs = horizontalPart(context, std::move(object));
    if (!crs || !proj_is_crs(crs.get()))
        return false;
    const PJ_TYPE type = proj_get_type(crs.get());
    const bool isGeographic = type == PJ_TYPE_GEOGRAPHIC_2D_CRS || type == PJ_TYPE_GEOGRAPHIC_3D_CRS;
    const ObjectPtr base(proj_crs_get_geodetic_crs(context, crs.get()));
    result->datum = shortDatumName(nameOf(base.get()));
    if (isGeographic)
        result->projection = "GEODETIC";
    else if (type == PJ_TYPE_GEOCENTRIC_CRS)
        result->projection = "GEOCENTRIC";
    else
        result->projection = conversionName(context, crs.get());
    describeAxes(context, crs.get(), isGeographic, result);
    return true;
}

void describeUtm(int code, CrsDescription *result)
{
    result->datum = "WGS84";
    result->projection = "UTM zone " + std::to_string(code % 100) + (code < 32700 ? "N" : "S");
}

/// What is known of a code without a database.
CrsDescription wellKnown(int code)
{
    CrsDescription result;
    result.epsg = code;
    result.datum = result.projection = "EPSG:" + std::to_string(code);
    const bool isUtm = (code > 32600 && code <= 32660) || (code > 32700 && code <= 32760);
    // The register numbers its older geographic systems so; those in other angles than degrees are 4801 to 4999.
    const bool isGeographic = code >= 4001 && code < 4801;
    if (isUtm)
        describeUtm(code, &result);
    if (code == 4326)
        result.datum = "WGS84";
    if (isGeographic)
        result.projection = "GEODETIC";
    if (isUtm || isGeographic || code == 3857 || code == 3035) {
        result.units = isGeographic ? PLK_UNITS_DEGREES : PLK_UNITS_METERS;
        result.unitFactor = 1;
    }
    result.isNorthFirst = isGeographic || code == 3035;
    return result;
}

CrsDescription lookUp(PJ_CONTEXT *context, int code)
{
    ObjectPtr crs(
        proj_create_from_database(context, "EPSG", std::to_string(code).c_str(), PJ_CATEGORY_CRS, 0, nullptr));
    CrsDescription result;
    if (!describe(context, std::move(crs), &result))
        return wellKnown(code);
    result.epsg = code;
    if (result.projection.empty())
        result.projection = "EPSG:" + std::to_string(code);
    if (result.datum.empty())
        result.datum = "EPSG:" + std::to_string(code);
    return result;
}

bool isSame(double a, double b)
{
    return std::abs(a - b) <= 1e-9 * std::abs(b);
}

} // namespace

CrsDescription crsOfEpsg(int code)
{
    if (code <= 0)
        return {};
    const ProjLock proj;
    std::map<int, CrsDescription> &known = projections().known;
    const auto found = known.find(code);
    if (found != known.end())
        return found->second;
    if (known.size() >= kMaxKnown)
        known.clear();
    return known[code] = lookUp(proj.context(), code);
}

void setGeodeticDataPath(const std::string &folder)
{
    std::error_code error;
    // PROJ takes file names in UTF-8 on every platform.
    const fs::path database = fs::u8path(folder) / "proj.db";
    if (!folder.empty() && !fs::is_regular_file(database, error))
        return;
    const std::string path = folder.empty() ? "" : database.u8string();
    const ProjLock proj;
    Projections &all = projections();
    if (path == all.dataPath)
        return;
    all.dataPath = path;
    all.context.reset();
    all.known.clear();
}

PLKCellSizeUnits unitsOfFactor(bool isAngle, double factor)
{
    constexpr double kFoot = 0.3048, kUsSurveyFoot = 1200.0 / 3937.0;
    if (isAngle)
        return isSame(factor, 1) ? PLK_UNITS_DEGREES : PLK_UNITS_INVALID;
    if (isSame(factor, 1))
        return PLK_UNITS_METERS;
    // The feet of the register (Clarke's, Sears', the Indian ones ...) differ by less than one part in ten thousand.
    const bool isFoot = std::abs(factor - kFoot) < 1e-4 * kFoot || isSame(factor, kUsSurveyFoot);
    return isFoot ? PLK_UNITS_FEET : PLK_UNITS_INVALID;
}

ProjLock::ProjLock()
    : lock(projections().mutex)
{
}

PJ_CONTEXT *ProjLock::context() const
{
    Projections &all = projections();
    if (!all.context)
        all.context = newContext(all.dataPath);
    return all.context.get();
}

} // namespace xrv
