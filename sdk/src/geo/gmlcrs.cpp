#include "gmlcrs.h"

#include "sidefile.h"

#include "base/utf8.h"

#include <pugixml.hpp>

#include <charconv>
#include <cstring>

namespace xrv {

namespace {

bool startsWith(const std::string &text, std::string_view start)
{
    return text.compare(0, start.size(), start) == 0;
}

/// The digits behind the last of \a separators.
int codeBehind(const std::string &name, const char *separators)
{
    const std::size_t separator = name.find_last_of(separators);
    const char *first = name.data() + (separator == std::string::npos ? name.size() : separator + 1);
    const char *end = name.data() + name.size();
    int code = 0;
    const auto [last, error] = std::from_chars(first, end, code);
    return error == std::errc() && last == end && code > 0 ? code : 0;
}

double metresOfUnit(int code)
{
    // Units of the register: metre, foot, US survey foot.
    return code == 9001 ? 1 : code == 9002 ? 0.3048 : code == 9003 ? 1200.0 / 3937.0 : 0;
}

std::string textOf(const pugi::xml_node &within, const char *name, const char *otherwise)
{
    const std::string text(trimmed(find(within, name).text().get()));
    return text.empty() ? otherwise : text;
}

} // namespace

SrsName parseSrsName(const std::string &name)
{
    std::string lower = asciiLower(std::string(trimmed(name)));
    // A compound system: the horizontal one comes first.
    if (startsWith(lower, "urn:ogc:def:crs,"))
        lower = "urn:ogc:def:" + lower.substr(16, lower.find(',', 16) - 16);
    SrsName result;
    const std::size_t dictionary = lower.find('#');
    if (startsWith(lower, "gmljp2:") && dictionary != std::string::npos) {
        result.dictionaryEntry = std::string(trimmed(name)).substr(dictionary + 1);
        return result;
    }
    if (lower.find("crs84") != std::string::npos)
        result.epsg = 4326;
    else if (lower.find("crs83") != std::string::npos)
        result.epsg = 4269;
    else if (lower.find("crs27") != std::string::npos)
        result.epsg = 4267;
    else if (lower.find("epsg") != std::string::npos)
        result.epsg = codeBehind(lower, ":/#");
    const bool isFormal = startsWith(lower, "urn:") || lower.find("/def/crs/epsg/") != std::string::npos;
    result.isRegisterOrder = isFormal && lower.find("epsg") != std::string::npos && result.epsg != 0;
    return result;
}

std::optional<CrsDescription> dictionaryCrs(const pugi::xml_node &document, const std::string &entry)
{
    const pugi::xml_node node = document.find_node([&entry](const pugi::xml_node &candidate) {
        return !entry.empty() && entry == candidate.attribute("gml:id").value();
    });
    if (!node)
        return std::nullopt;
    CrsDescription crs;
    crs.datum = textOf(node, "datumName", "USER-DEFINED");
    if (std::strcmp(localName(node), "ProjectedCRS") != 0) {
        crs.projection = "GEODETIC";
        crs.units = PLK_UNITS_DEGREES;
        return crs;
    }
    crs.projection = textOf(node, "coordinateOperationName", "USER-DEFINED");
    const pugi::xml_node axis = find(find(node, "usesCartesianCS"), "CoordinateSystemAxis");
    crs.unitFactor = metresOfUnit(codeBehind(axis.attribute("gml:uom").value(), ":#"));
    crs.units = unitsOfFactor(false, crs.unitFactor);
    return crs;
}

const char *localName(const pugi::xml_node &node)
{
    const char *colon = std::strchr(node.name(), ':');
    return colon ? colon + 1 : node.name();
}

pugi::xml_node find(const pugi::xml_node &within, const char *name)
{
    return within.find_node([name](const pugi::xml_node &node) { return std::strcmp(localName(node), name) == 0; });
}

} // namespace xrv
