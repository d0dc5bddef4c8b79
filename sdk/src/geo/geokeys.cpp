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

struct DefinitionDeleter
{
    void operator()(GTIFDefn *definition) const { GTIFFreeDefn(definition); }
};
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
    std::string *first = static_cast<std::string *>(GTIFGetUserData(keys));
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

double parameter(const GTIFDefn &definition, int key)
{
    for (int i = 0; i < definition.nParms && i < MAX_GTIF_PROJPARMS; ++i) {
        if (definition.ProjParmId[i] == key)
            return definition.ProjParm[i];
    }
    return std::numeric_limits<double>::quiet_NaN();
}

/// Zone of UTM, negative in the south; 0 if the projection is another one.
int utmZone(const GTIFDefn &definition)
{
    if (definition.UOMLengthInMeters != 1)
        return 0;
    if (definition.MapSys == MapSys_UTM_North || definition.MapSys == MapSys_UTM_South)
        return definition.MapSys == MapSys_UTM_North ? definition.Zone : -definition.Zone;
    const double zone = (parameter(definition, ProjNatOriginLongGeoKey) + 183) / 6;
    const double falseNorthing = parameter(definition, ProjFalseNorthingGeoKey);
    const bool isUtm = definition.CTProjection == CT_TransverseMercator && zone >= 1 && zone <= 60 &&
                       zone == std::floor(zone) && parameter(definition, ProjNatOriginLatGeoKey) == 0 &&
                       parameter(definition, ProjScaleAtNatOriginGeoKey) == 0.9996 &&
                       parameter(definition, ProjFalseEastingGeoKey) == 500000 &&
                       (falseNorthing == 0 || falseNorthing == 1e7);
    return isUtm ? static_cast<int>(falseNorthing == 0 ? zone : -zone) : 0;
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

using DefinitionPtr = std::unique_ptr<GTIFDefn, DefinitionDeleter>;

DefinitionPtr definitionOf(GTIF *keys, std::string *projString)
{
    const ProjLock proj;
    GTIFAttachPROJContext(keys, proj.context());
    DefinitionPtr definition(GTIFAllocDefn());
    if (!GTIFGetDefn(keys, definition.get()))
        return nullptr;
    const std::unique_ptr<char, TextDeleter> text(GTIFGetProj4Defn(definition.get()));
    if (text)
        *projString = std::string(text.get()) + " +type=crs";
    return definition;
}

std::optional<CrsDescription> userDefined(GTIF *keys, int model, int geographic)
{
    std::string projString;
    const DefinitionPtr definition = definitionOf(keys, &projString);
    if (!definition)
        return std::nullopt;
    CrsDescription crs;
    if (model == ModelTypeProjected) {
        if (const int code = utmCode(geographic, utmZone(*definition)))
            return crsOfEpsg(code);
        crsOfProjString(projString, &crs);
        if (crs.projection.empty() || crs.projection == "RAW")
            crs.projection = "USER-DEFINED";
        crs.units = unitsOfFactor(false, definition->UOMLengthInMeters);
        crs.unitFactor = definition->UOMLengthInMeters;
    } else {
        crs.projection = "GEODETIC";
        crs.units = unitsOfFactor(true, definition->UOMAngleInDegrees);
        crs.unitFactor = definition->UOMAngleInDegrees;
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
        warnings->push_back("The GeoJP2 box has other linear units than EPSG:" + std::to_string(crs->epsg) +
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
    std::optional<CrsDescription> crs;
    if (isRegisterCode(code))
        crs = crsOfEpsg(code);
    else
        crs = userDefined(keys, model, geographic);
    if (crs && model == ModelTypeProjected)
        applyLinearUnit(keys, &*crs, warnings);
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
        warnings->push_back("The GeoJP2 box has damaged keys" + (message.empty() ? "." : " (" + message + ")."));
    return result;
}

} // namespace xrv
