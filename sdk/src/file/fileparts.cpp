#include "fileparts.h"

#include "base/utf8.h"
#include "container/colourbox.h"
#include "decode/mappedreader.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace xrv {

using PLK::CError;

namespace {

bool isNamedXrv(const std::string &name)
{
    const std::string ending = ".xrv", lower = asciiLower(name);
    return lower.size() >= ending.size() && lower.compare(lower.size() - ending.size(), ending.size(), ending) == 0;
}

/// Begins as pages and messages of servers do, in HTML or XML.
bool isMarkup(ByteSource &source)
{
    Bytes start;
    if (source.read({0, std::min<std::uint64_t>(source.size(), 64)}, &start))
        return false;
    const std::string text(start.begin(), start.end());
    const std::size_t first = text.find_first_not_of(" \t\r\n\xEF\xBB\xBF");
    return first != std::string::npos && text[first] == '<';
}

CError readBoxes(ByteSource &source, const SourceName &name, FileParts *parts, std::vector<std::string> *warnings)
{
    bool isXrvFile = false;
    if (CError error = isXrv(source, &isXrvFile))
        return error;
    if (isXrvFile) {
        parts->xrv = std::make_unique<XrvStructure>();
        CError error = readXrvStructure(source, parts->xrv.get(), warnings);
        parts->boxes = std::move(parts->xrv->boxes);
        return error;
    }
    CError error = readJp2Structure(source, &parts->boxes, warnings);
    // Servers answer with a page, and status 200, where there is no such file or a login is wanted.
    if (error.GetErrorNumber() == PLK_ERR_UNKNOWN_FORMAT && source.isRemote() && isMarkup(source))
        return {PLK_ERR_UNKNOWN_FORMAT, "The server sent a page or a message, not an image."};
    if (error.GetErrorNumber() == PLK_ERR_UNKNOWN_FORMAT && isNamedXrv(name.printable()))
        return {PLK_ERR_UNKNOWN_FORMAT, "This file is not an XRV image that this library can read."};
    return error;
}

/// The header box repeats the size that the codestream has (ISO/IEC 15444-1 I.5.3.1).
void compareWithHeaderBox(const FileParts &parts, std::vector<std::string> *warnings)
{
    const RasterInfo &raster = parts.reader->info();
    const std::uint32_t canvasWidth = raster.canvasX1 - raster.canvasX0;
    const std::uint32_t canvasHeight = raster.canvasY1 - raster.canvasY0;
    const Jp2Structure &boxes = parts.boxes;
    if (boxes.imageWidth == 0 && boxes.imageHeight == 0)
        return;
    if (boxes.imageWidth != canvasWidth || boxes.imageHeight != canvasHeight)
        warnings->push_back("The header box claims " + std::to_string(boxes.imageWidth) + " x " +
                            std::to_string(boxes.imageHeight) + " cells, but the codestream has " +
                            std::to_string(canvasWidth) + " x " + std::to_string(canvasHeight) +
                            "; the codestream is believed.");
}

/// What the file information record of an XRV file tells of the colours. Its channels are as JP2 files have them, so
/// luma and chroma have the full range.
std::optional<ColourSpecification> colourOf(const XrvFileInfo &info)
{
    using Kind = ColourSpecification::Kind;
    switch (info.colourSpace) {
    case PLK_COLORSPACE_GREYSCALE:
        return ColourSpecification{Kind::Greyscale, kGreySpace, {}, {}};
    case PLK_COLORSPACE_SRGB:
        return ColourSpecification{Kind::SRgb, kSRgbSpace, {}, {}};
    case PLK_COLORSPACE_YUV:
    case PLK_COLORSPACE_YCBCR:
        return ColourSpecification{Kind::SYcc, kSYccSpace, {}, {}};
    default:
        return {};
    }
}

GeoReference placeOf(const XrvFileInfo &info)
{
    GeoReference place;
    place.origin = GeoReference::Origin::XrvInfo;
    place.transform = info.transform;
    place.units = info.units;
    place.epsg = info.epsg;
    place.datum = info.datum;
    place.projection = info.projection;
    return place;
}

/// Places and steps that a window of the world can be computed with.
bool isUsable(const GeoReference &geo)
{
    const auto isFinite = [](double value) { return std::isfinite(value); };
    return std::all_of(geo.transform.begin(), geo.transform.end(), isFinite) && std::isfinite(geo.incrementX()) &&
           std::isfinite(geo.incrementY()) && geo.incrementX() != 0.0 && geo.incrementY() != 0.0;
}

GeoReference findPlace(const FileParts &parts, const SourceName &name, std::vector<std::string> *warnings)
{
    const RasterInfo &raster = parts.reader->info();
    GeoReference geo = parts.xrv && parts.xrv->info.hasPlace
                           ? placeOf(parts.xrv->info)
                           : readGeoReference(parts.boxes, raster.width, raster.height, name.path(), warnings);
    if (isUsable(geo))
        return geo;
    warnings->push_back("The geo-reference has no usable cell size and is ignored.");
    return {};
}

} // namespace

std::string FileParts::typeName() const
{
    if (xrv)
        return "XRV file";
    return boxes.isBareCodestream ? "JPEG 2000 codestream" : "JPEG 2000 file";
}

std::size_t FileParts::bandCount() const
{
    constexpr std::size_t kMaxBands = std::numeric_limits<std::uint16_t>::max();
    return std::min(bandMap.bands().size(), kMaxBands);
}

namespace {

/// Codes become cells before anybody else sees them.
CError mapCells(FileParts *parts)
{
    if (!parts->xrv || parts->xrv->mappings.empty())
        return {};
    std::vector<MappedComponent> components;
    for (std::size_t i = 0; i < parts->xrv->mappings.size(); ++i)
        components.push_back({parts->xrv->mappings[i], parts->xrv->bands[i].isSigned});
    parts->reader = MappedReader::make(std::move(parts->reader), std::move(components));
    if (!parts->reader)
        return {PLK_ERR_MALFORMED, "The codestream of the XRV file does not hold the cells that the file describes."};
    return {};
}

} // namespace

CError readFileParts(const std::shared_ptr<ByteSource> &source, const SourceName &name, FileParts *parts,
                     std::vector<std::string> *warnings)
{
    if (CError error = readBoxes(*source, name, parts, warnings))
        return error;
    if (CError error = RasterReader::open(source, parts->boxes.codestream, &parts->reader, packetIndexOf(parts->boxes)))
        return error;
    if (CError error = mapCells(parts))
        return error;
    compareWithHeaderBox(*parts, warnings);
    if (parts->xrv && !parts->boxes.colour)
        parts->boxes.colour = colourOf(parts->xrv->info);
    parts->bandMap = BandMap::make(parts->reader->info(), parts->boxes, warnings);
    parts->geo = findPlace(*parts, name, warnings);
    return {};
}

} // namespace xrv
