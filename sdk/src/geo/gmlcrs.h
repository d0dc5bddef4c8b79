#pragma once

#include "crsnames.h"

#include <optional>
#include <string>

namespace pugi {
class xml_node;
}

namespace xrv {

/// A srsName attribute, taken apart.
struct SrsName
{
    int epsg = 0; ///< 0: not a name in the EPSG register
    /// Coordinates come in the order of the register's axes. That is so for the URN ("urn:ogc:def:crs:EPSG::4326") and
    /// the address ("http://www.opengis.net/def/crs/EPSG/0/4326"); "EPSG:4326", ".../epsg.xml#4326" and OGC's CRS84,
    /// CRS83 and CRS27 are x before y (OGC 07-092r3, OGC 05-096r1 7.3).
    bool isRegisterOrder = false;
    std::string dictionaryEntry; ///< gml:id of a definition in the file itself, "gmljp2://xml/CRSDictionary.gml#id"
};

SrsName parseSrsName(const std::string &name);

/// What the definition with the gml:id \a entry in a dictionary tells: names, and the unit of the axes of a projected
/// system. Nothing without it. Its coordinates are x before y.
std::optional<CrsDescription> dictionaryCrs(const pugi::xml_node &document, const std::string &entry);

/// The name of an element without its prefix, which every writer may choose.
const char *localName(const pugi::xml_node &node);
/// The first element below \a within, at any depth, with the local name \a name; null if none.
pugi::xml_node find(const pugi::xml_node &within, const char *name);

} // namespace xrv
