#include "gmlinjp2.h"

#include "gmlcrs.h"
#include "sidefile.h"

#include "base/utf8.h"

#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace xrv {

namespace {

/// Memory for the documents of all GML texts together. One that places an image takes some ten thousand bytes.
constexpr std::size_t kMaxDocumentBytes = std::size_t(64) << 20;

using Pair = std::array<double, 2>;

/// A grid as it is written, before any axis is swapped.
struct Grid
{
    Pair origin{};
    Pair alongRow{};
    Pair downColumn{};
};

std::vector<pugi::xml_node> childrenNamed(const pugi::xml_node &parent, const char *name)
{
    std::vector<pugi::xml_node> found;
    for (const pugi::xml_node &child : parent.children()) {
        if (std::strcmp(localName(child), name) == 0)
            found.push_back(child);
    }
    return found;
}

/// The first two numbers of "a b", "a,b" or "a b c".
std::optional<Pair> pairOf(std::string_view text)
{
    constexpr std::string_view kBetween = " \t\r\n,";
    Pair pair{};
    for (double &value : pair) {
        const std::size_t start = std::min(text.find_first_not_of(kBetween), text.size());
        const std::size_t end = std::min(text.find_first_of(kBetween, start), text.size());
        const std::optional<double> number = parseNumber(text.substr(start, end - start));
        if (!number)
            return std::nullopt;
        value = *number;
        text.remove_prefix(end);
    }
    return pair;
}

std::optional<Pair> originOf(const pugi::xml_node &grid)
{
    const pugi::xml_node origin = find(grid, "origin");
    for (const char *name : {"pos", "coordinates"}) {
        if (const pugi::xml_node position = find(origin, name))
            return pairOf(position.text().get());
    }
    return std::nullopt;
}

std::optional<Grid> gridOf(const pugi::xml_node &node)
{
    const std::vector<pugi::xml_node> vectors = childrenNamed(node, "offsetVector");
    if (vectors.size() < 2)
        return std::nullopt;
    const std::optional<Pair> origin = originOf(node);
    const std::optional<Pair> first = pairOf(vectors[0].text().get()), second = pairOf(vectors[1].text().get());
    if (!origin || !first || !second)
        return std::nullopt;
    return Grid{*origin, *first, *second};
}

/// The grid's own name, that of its point or vectors, or that of an envelope around it.
std::string srsNameOf(const pugi::xml_node &document, const pugi::xml_node &grid)
{
    const auto hasName = [](const pugi::xml_node &node) { return *node.attribute("srsName").value() != 0; };
    for (const pugi::xml_node &node :
         {find(grid, "Point"), grid, grid.find_node(hasName), find(document, "Envelope")}) {
        if (hasName(node))
            return node.attribute("srsName").value();
    }
    return document.find_node(hasName).attribute("srsName").value();
}

std::string lowerName(const pugi::xml_node &node)
{
    return asciiLower(std::string(trimmed(node.text().get())));
}

/// The axes are named, and easting or longitude comes first whatever the register says.
bool saysEastFirst(const pugi::xml_node &grid)
{
    std::string names;
    for (const pugi::xml_node &axis : childrenNamed(grid, "axisName"))
        names += lowerName(axis) + ' ';
    for (const pugi::xml_node &axes : childrenNamed(grid, "axisLabels"))
        names += lowerName(axes) + ' ';
    return names.compare(0, 7, "easting") == 0 || names.compare(0, 3, "lon") == 0;
}

bool isAlongAxes(const Pair &alongRow, const Pair &downColumn)
{
    return alongRow[1] == 0 && downColumn[0] == 0;
}

bool isMirrored(const Pair &alongRow, const Pair &downColumn)
{
    return alongRow[0] * downColumn[1] - alongRow[1] * downColumn[0] > 0;
}

void swapAxes(Pair *pair)
{
    std::swap((*pair)[0], (*pair)[1]);
}

/// Brings a grid of a north-first system to x before y; see readGml().
void swapToEastFirst(Grid *grid, bool isGeographic)
{
    Pair alongRow = grid->alongRow, downColumn = grid->downColumn;
    swapAxes(&alongRow);
    swapAxes(&downColumn);
    if (isAlongAxes(alongRow, downColumn) || !isMirrored(alongRow, downColumn)) {
        grid->alongRow = alongRow;
        grid->downColumn = downColumn;
    }
    if (!isGeographic || std::abs(grid->origin[0]) <= 90)
        swapAxes(&grid->origin);
}

std::optional<CrsDescription> crsOf(const SrsName &name, const std::vector<pugi::xml_document> &documents)
{
    if (name.epsg != 0)
        return crsOfEpsg(name.epsg);
    for (const pugi::xml_document &document : documents) {
        if (std::optional<CrsDescription> crs = dictionaryCrs(document, name.dictionaryEntry))
            return crs;
    }
    return std::nullopt;
}

/// What the document of a text takes: a copy of it, a first page, nodes and attributes.
std::size_t documentBytes(const std::string &xml)
{
    constexpr std::size_t kPage = std::size_t(32) * 1024, kNode = 64, kAttribute = 40;
    std::size_t bytes = kPage + xml.size();
    for (const char c : xml)
        bytes += c == '<' ? kNode : c == '=' ? kAttribute : 0;
    return bytes;
}

std::vector<pugi::xml_document> parse(const std::vector<LabelledXml> &texts, std::vector<std::string> *warnings)
{
    std::vector<const LabelledXml *> ordered;
    ordered.reserve(texts.size());
    for (const LabelledXml &text : texts)
        ordered.push_back(&text);
    std::stable_partition(ordered.begin(), ordered.end(),
                          [](const LabelledXml *text) { return text->label == "gml.root-instance"; });
    std::vector<pugi::xml_document> documents;
    std::size_t bytesLeft = kMaxDocumentBytes;
    for (const LabelledXml *text : ordered) {
        const std::size_t bytes = documentBytes(text->xml);
        if (bytes > bytesLeft) {
            warnings->push_back("The GML text '" + text->label + "' and those after it take more than " +
                                std::to_string(kMaxDocumentBytes >> 20) + " MB of memory and are not used.");
            break;
        }
        bytesLeft -= bytes;
        pugi::xml_document document;
        // Some writers count the closing zero as part of the text.
        const std::size_t length = std::min(text->xml.find_last_not_of('\0') + 1, text->xml.size());
        if (document.load_buffer(text->xml.data(), length))
            documents.push_back(std::move(document));
        else
            warnings->push_back("The GML text '" + text->label + "' is damaged and is not used.");
    }
    return documents;
}

std::optional<Transform> transformOf(Grid grid, bool isNorthFirst, bool isGeographic)
{
    if (isNorthFirst)
        swapToEastFirst(&grid, isGeographic);
    const Transform transform = fromCentres(
        {grid.origin[0], grid.alongRow[0], grid.downColumn[0], grid.origin[1], grid.alongRow[1], grid.downColumn[1]});
    return isUsable(transform) ? std::optional<Transform>(transform) : std::nullopt;
}

} // namespace

Placement readGml(const std::vector<LabelledXml> &texts, std::vector<std::string> *warnings)
{
    const std::vector<pugi::xml_document> documents = parse(texts, warnings);
    Placement result;
    for (const pugi::xml_document &document : documents) {
        const pugi::xml_node node = find(document, "RectifiedGrid");
        const SrsName name = parseSrsName(srsNameOf(document, node));
        const std::optional<CrsDescription> crs = crsOf(name, documents);
        if (!result.crs)
            result.crs = crs;
        if (!node)
            continue;
        const std::optional<Grid> grid = gridOf(node);
        const bool isNorthFirst = crs && crs->isNorthFirst && name.isRegisterOrder && !saysEastFirst(node);
        if (grid)
            result.transform = transformOf(*grid, isNorthFirst, crs && crs->projection == "GEODETIC");
        if (!result.transform)
            warnings->push_back("The grid of the GML box is incomplete or damaged and is not used.");
        result.crs = crs;
        break;
    }
    return result;
}

} // namespace xrv
