#include "geokeys.h"

#include "geotags.h"

#include <geo_normalize.h>
#include <geo_simpletags.h>
#include <geo_tiffp.h>
#include <geotiff.h>
#include <geovalues.h>

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>

namespace xrv {

namespace {

struct TagsDeleter
{
    void operator()(ST_TIFF *tags) const { ST_Destroy(tags); }
};
struct KeysDeleter
{
    void operator()(GTIF *keys) const { GTIFFree(keys); }
};
using TagsPtr = std::unique_ptr<ST_TIFF, TagsDeleter>;
using KeysPtr = std::unique_ptr<GTIF, KeysDeleter>;

struct TextDeleter
{
    void operator()(char *text) const { GTIFFreeMemory(text); }
};

// Codes outside are private or undefined (OGC 19-008r4, 7.5).
bool isRegisterCode(int code)
{
    return code >= 1024 && code < KvUserDefined;
}

TagsPtr geoTags(const TiffFile &tiff)
{
    TagsPtr tags(ST_Create());
    std::vector<std::uint16_t> keys = tiff.shorts(kTagGeoKeys);
    std::vector<double> doubles = tiff.doubles(kTagGeoDoubles);
    std::string text = tiff.text(kTagGeoAscii);
    if (keys.size() < 4)
        return nullptr;
    ST_SetKey(tags.get(), kTagGeoKeys, static_cast<int>(keys.size()), STT_SHORT, keys.data());
    if (!doubles.empty())
        ST_SetKey(tags.get(), kTagGeoDoubles, static_cast<int>(doubles.size()), STT_DOUBLE, doubles.data());
    if (!text.empty())
        ST_SetKey(tags.get(), kTagGeoAscii, static_cast<int>(text.size()) + 1, STT_ASCII, text.data());
    return tags;
}

/// Without a callback libgeotiff writes to standard error. The user data is a text that takes the first message.
void keepFirstMessage(GTIF *keys, int, const char *format, ...)
{
    auto *first = static_cast<std::string *>(GTIFGetUserData(keys));
    char text[256];
    va_list arguments;
    va_start(arguments, format);
    if (first->empty() && std::vsnprintf(text, sizeof text, format, arguments) > 0)
        *first = text;
    va_end(arguments);
}

KeysPtr keysOf(ST_TIFF *tags, std::string *message)
{
    TIFFMethod methods;
    GTIFSetSimpleTagsMethods(&methods);
    return KeysPtr(GTIFNewWithMethodsEx(tags, &methods, keepFirstMessage, message));
}

int shortKey(GTIF *keys, geokey_t key)
{
    unsigned short value = 0;
    return GTIFKeyGetSHORT(keys, key, &value, 0, 1) == 1 ? value : 0;
}

std::string textKey(GTIF *keys, geokey_t key)
{
    char text[512] = "";
    return GTIFKeyGetASCII(keys, key, text, sizeof text) > 0 ? text : "";
}

/// Metres per unit as ProjLinearUnitsGeoKey has it; 0 without it.
double keyedLinearUnit(GTIF *keys)
{
    const int code = shortKey(keys, ProjLinearUnitsGeoKey);
    double metres = 0;
    if (code == KvUserDefined && GTIFKeyGetDOUBLE(keys, ProjLinearUnitSizeGeoKey, &metres, 0, 1) != 1)
        return 0;
    if (code != 0 && code != KvUserDefined) {
        const ProjLock proj;
        if (!GTIFGetUOMLengthInfoEx(proj.context(), code, nullptr, &metres))
            return 0;
    }
    return std::isfinite(metres) && metres > 0 ? metres : 0;
}

/// Some writers put a text of their own ("GCS Name = WGS 84|Datum = ...|") where others have the plain name.
std::string geographicName(GTIF *keys)
{
    std::string name = textKey(keys, GeogCitationGeoKey);
    const std::size_t label = name.find("GCS Name = ");
    if (label != std::string::npos)
        name.erase(0, label + 11);
    name.erase(std::min(name.find('|'), name.size()));
    return name.empty() || name == "unknown" ? "USER-DEFINED" : name;
}

/// NaN without the key.
double doubleKey(GTIF *keys, geokey_t key)
{
    double value = 0;
    return GTIFKeyGetDOUBLE(keys, key, &value, 0, 1) == 1 ? value : std::numeric_limits<double>::quiet_NaN();
}

/// Degrees per unit of angles; 0 for units other than degrees and grads.
double angularUnit(GTIF *keys)
{
    switch (shortKey(keys, GeogAngularUnitsGeoKey)) {
    case 0:
    case Angular_Degree:
    case 9122: // the same with another way of representing it
        return 1;
    case Angular_Grad:
        return 0.9;
    default:
        return 0;
    }
}

bool hasUtmParameters(GTIF *keys)
{
    const double falseNorthing = doubleKey(keys, ProjFalseNorthingGeoKey);
    return shortKey(keys, ProjCoordTransGeoKey) == CT_TransverseMercator && angularUnit(keys) == 1 &&
           doubleKey(keys, ProjNatOriginLatGeoKey) == 0 && doubleKey(keys, ProjScaleAtNatOriginGeoKey) == 0.9996 &&
           doubleKey(keys, ProjFalseEastingGeoKey) == 500000 && (falseNorthing == 0 || falseNorthing == 1e7);
}

/// Zone of UTM, negative in the south; 0 if the projection is another one.
int utmZone(GTIF *keys)
{
    const double unit = keyedLinearUnit(keys);
    if (unit != 0 && unit != 1)
        return 0;
    const int conversion = shortKey(keys, ProjectionGeoKey);
    if (conversion > 16000 && conversion <= 16060)
        return conversion - 16000;
    if (conversion > 16100 && conversion <= 16160)
        return 16100 - conversion;
    const double zone = (doubleKey(keys, ProjNatOriginLongGeoKey) + 183) / 6;
    if (!hasUtmParameters(keys) || !(zone >= 1 && zone <= 60 && zone == std::floor(zone)))
        return 0;
    return static_cast<int>(doubleKey(keys, ProjFalseNorthingGeoKey) == 0 ? zone : -zone);
}

/// Code of a zone of UTM on the geographic system \a geographic; 0 if the register has none.
int utmCode(int geographic, int zone)
{
    struct Series
    {
        int geographic, base, firstZone, lastZone;
    };
    static constexpr Series kSeries[] = {
        {4326, 32600, 1, 60}, {4326, 32700, -60, -1}, {4322, 32200, 1, 60},  {4322, 32300, -60, -1},
        {4269, 26900, 1, 23}, {4267, 26700, 1, 22},   {4258, 25800, 28, 37},
    };
    for (const Series &series : kSeries) {
        if (series.geographic == geographic && zone >= series.firstZone && zone <= series.lastZone)
            return series.base + std::abs(zone);
    }
    return 0;
}

/// Names of the methods in the EPSG register, or the customary ones. (libgeotiff's own way to a PROJ string writes
/// numbers from the file into a buffer of fixed size.)
const char *methodName(int method)
{
    struct Method
    {
        int code;
        const char *name;
    };
    static constexpr Method kMethods[] = {
        {CT_TransverseMercator, "Transverse Mercator"},
        {CT_TransvMercator_SouthOriented, "Transverse Mercator (South Orientated)"},
        {CT_ObliqueMercator, "Hotine Oblique Mercator (variant A)"},
        {CT_HotineObliqueMercatorAzimuthCenter, "Hotine Oblique Mercator (variant B)"},
        {CT_ObliqueMercator_Laborde, "Laborde Oblique Mercator"},
        {CT_ObliqueMercator_Rosenmund, "Swiss Oblique Cylindrical"},
        {CT_Mercator, "Mercator"},
        {CT_LambertConfConic_2SP, "Lambert Conic Conformal (2SP)"},
        {CT_LambertConfConic_1SP, "Lambert Conic Conformal (1SP)"},
        {CT_LambertAzimEqualArea, "Lambert Azimuthal Equal Area"},
        {CT_AlbersEqualArea, "Albers Equal Area"},
        {CT_AzimuthalEquidistant, "Azimuthal Equidistant"},
        {CT_EquidistantConic, "Equidistant Conic"},
        {CT_Stereographic, "Stereographic"},
        {CT_PolarStereographic, "Polar Stereographic"},
        {CT_ObliqueStereographic, "Oblique Stereographic"},
        {CT_Equirectangular, "Equidistant Cylindrical"},
        {CT_CassiniSoldner, "Cassini-Soldner"},
        {CT_Gnomonic, "Gnomonic"},
        {CT_MillerCylindrical, "Miller Cylindrical"},
        {CT_Orthographic, "Orthographic"},
        {CT_Polyconic, "American Polyconic"},
        {CT_Robinson, "Robinson"},
        {CT_Sinusoidal, "Sinusoidal"},
        {CT_VanDerGrinten, "Van der Grinten"},
        {CT_NewZealandMapGrid, "New Zealand Map Grid"},
        {CT_CylindricalEqualArea, "Lambert Cylindrical Equal Area"},
    };
    for (const Method &known : kMethods) {
        if (known.code == method)
            return known.name;
    }
    return "USER-DEFINED";
}

std::string projectionName(GTIF *keys)
{
    const int conversion = shortKey(keys, ProjectionGeoKey);
    const ProjLock proj;
    char *name = nullptr;
    if (!isRegisterCode(conversion) || !GTIFGetProjTRFInfoEx(proj.context(), conversion, &name, nullptr, nullptr) ||
        !name)
        return methodName(shortKey(keys, ProjCoordTransGeoKey));
    const std::unique_ptr<char, TextDeleter> owner(name);
    return name;
}

CrsDescription userDefined(GTIF *keys, int model, int geographic)
{
    CrsDescription crs;
    if (model == ModelTypeProjected) {
        if (const int code = utmCode(geographic, utmZone(keys)))
            return crsOfEpsg(code);
        crs.projection = projectionName(keys);
        // The metre is what the keys mean where they do not say.
        crs.unitFactor = shortKey(keys, ProjLinearUnitsGeoKey) == 0 ? 1 : keyedLinearUnit(keys);
        crs.units = unitsOfFactor(false, crs.unitFactor);
    } else if (model == ModelTypeGeographic) {
        crs.projection = "GEODETIC";
        crs.unitFactor = angularUnit(keys);
        crs.units = unitsOfFactor(true, crs.unitFactor);
    } else {
        crs.projection = "GEOCENTRIC";
    }
    crs.datum = isRegisterCode(geographic) ? crsOfEpsg(geographic).datum : geographicName(keys);
    return crs;
}

void applyLinearUnit(GTIF *keys, CrsDescription *crs, std::vector<std::string> *warnings)
{
    const double metres = keyedLinearUnit(keys);
    if (metres == 0)
        return;
    const bool isKnown = crs->unitFactor > 0;
    const bool differs = !isKnown || std::abs(metres - crs->unitFactor) > 1e-9 * metres;
    if (!differs)
        return;
    if (isKnown && crs->epsg != 0) {
        warnings->push_back("The GeoTIFF header has other linear units than EPSG:" + std::to_string(crs->epsg) +
                            "; the units are used and the code is not.");
        crs->epsg = 0;
    }
    crs->units = unitsOfFactor(false, metres);
    crs->unitFactor = metres;
}

std::optional<CrsDescription> systemOf(GTIF *keys, std::vector<std::string> *warnings)
{
    const int projected = shortKey(keys, ProjectedCSTypeGeoKey);
    const int geographic = shortKey(keys, GeographicTypeGeoKey);
    int model = shortKey(keys, GTModelTypeGeoKey);
    if (model != ModelTypeProjected && model != ModelTypeGeographic && model != ModelTypeGeocentric)
        model = projected != 0 ? ModelTypeProjected : geographic != 0 ? ModelTypeGeographic : 0;
    if (model == 0)
        return std::nullopt;
    const int code = model == ModelTypeProjected ? projected : geographic;
    CrsDescription crs = isRegisterCode(code) ? crsOfEpsg(code) : userDefined(keys, model, geographic);
    if (model == ModelTypeProjected)
        applyLinearUnit(keys, &crs, warnings);
    return crs;
}

} // namespace

GeoKeys readGeoKeys(const TiffFile &tiff, std::vector<std::string> *warnings)
{
    GeoKeys result;
    const TagsPtr tags = geoTags(tiff);
    if (!tags)
        return result;
    std::string message;
    const KeysPtr keys = keysOf(tags.get(), &message);
    if (keys) {
        result.isPixelPoint = shortKey(keys.get(), GTRasterTypeGeoKey) == RasterPixelIsPoint;
        result.crs = systemOf(keys.get(), warnings);
    }
    if (!keys || !message.empty())
        warnings->push_back("The GeoTIFF header has damaged keys" + (message.empty() ? "." : " (" + message + ")."));
    return result;
}

} // namespace xrv
