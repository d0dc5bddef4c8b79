#include "filestart.h"

#include "boxes.h"

#include "container/boxtype.h"
#include "xrv/xrvboxes.h"

#include <algorithm>
#include <utility>

namespace xrv {

namespace {

/// A whole box with its type.
using TypedBox = std::pair<std::uint32_t, Bytes>;

void append(Bytes *bytes, const Bytes &more)
{
    bytes->insert(bytes->end(), more.begin(), more.end());
}

/// What the source has in its own words where it can be had, since the place may leave some of it out.
GeoTags geoTagsOf(const ImageDescription &image)
{
    GeoTags tags = image.geoTags.isEmpty() ? makeGeoTags(image.place) : image.geoTags;
    if (image.rpc) {
        const auto *first = reinterpret_cast<const double *>(&*image.rpc);
        tags.rpc.assign(first, first + sizeof(PLKRPCData) / sizeof(double));
    }
    return tags;
}

/// The smallest that holds every band.
PLKCellType cellTypeOf(const ImageDescription &image)
{
    const auto isFloat = [](const XrvBand &band) { return band.kind == CellKind::Float; };
    if (std::any_of(image.bands.begin(), image.bands.end(), isFloat))
        return PLKCT_FLOAT;
    int bits = 1, signedBits = 0;
    for (const XrvBand &band : image.bands)
        (band.isSigned ? signedBits : bits) = std::max<int>(band.isSigned ? signedBits : bits, band.bits);
    if (signedBits == 0)
        return bits <= 8 ? PLKCT_UINT8 : bits <= 16 ? PLKCT_UINT16 : PLKCT_UINT32;
    const int needed = std::max(signedBits, bits + 1);
    return needed <= 8 ? PLKCT_INT8 : needed <= 16 ? PLKCT_INT16 : PLKCT_INT32;
}

void describe(const ImageDescription &image, XrvFileInfo *info)
{
    info->cellType = cellTypeOf(image);
    info->colourSpace = image.colourSpace;
    info->units = image.place.units;
    info->hasPlace = image.place.origin != GeoReference::Origin::None;
    info->bands = static_cast<std::uint16_t>(image.bands.size());
    info->transform = image.place.transform;
    info->epsg = image.place.epsg;
    info->datum = image.place.datum;
    info->projection = image.place.projection;
}

std::vector<TypedBox> makeXrvBoxes(const ImageDescription &image, const XrvFileInfo &info,
                                   const std::vector<CellMapping> &mappings, const PLKFileStatistics &statistics,
                                   const PacketIndex *index)
{
    std::vector<TypedBox> boxes;
    const auto add = [&boxes](std::uint32_t type, const Bytes &content) {
        boxes.emplace_back(type, makeBox(type, content));
    };
    add(kFileInfoBox, makeFileInfo(info));
    add(kBandsBox, makeBands(image.bands));
    if (!mappings.empty())
        add(kCellsBox, makeCellMappings(mappings));
    boxes.emplace_back(boxType("jp2h"), makeHeaderBox(image));
    if (std::any_of(image.texts.begin(), image.texts.end(), [](const auto &text) { return text.has_value(); }))
        add(kTextsBox, makeTexts(image.texts));
    if (image.rpc)
        add(kRpcBox, makeRpc(*image.rpc));
    if (const Bytes geoBox = makeGeoBox(geoTagsOf(image)); !geoBox.empty())
        boxes.emplace_back(boxType("uuid"), geoBox);
    add(kStatisticsBox, makeStatistics(statistics));
    for (const std::string &xml : image.xmls)
        add(boxType("xml "), Bytes(xml.begin(), xml.end()));
    if (index)
        add(kPacketIndexBox, index->content());
    return boxes;
}

/// With what stands before all others: signature, version and table of contents.
Bytes joinXrvBoxes(const std::vector<TypedBox> &boxes, std::uint8_t version, std::uint64_t streamLength)
{
    const Bytes streamHeader = makeBoxHeader(boxType("jp2c"), streamLength);
    std::uint64_t offset = kContentsStart + 8 + (boxes.size() + 1) * kXrvBoxPlaceBytes;
    std::vector<XrvBoxPlace> places;
    for (const auto &[type, box] : boxes) {
        places.push_back({type, {offset, box.size()}});
        offset += box.size();
    }
    places.push_back({boxType("jp2c"), {offset, streamHeader.size() + streamLength}});

    Bytes bytes(kXrvSignature.begin(), kXrvSignature.end());
    append(&bytes, makeBox(kVersionBox, Bytes{version, kXrvMinorVersion, 0, 0}));
    append(&bytes, makeBox(kContentsBox, makeContents(places)));
    for (const TypedBox &box : boxes)
        append(&bytes, box.second);
    append(&bytes, streamHeader);
    return bytes;
}

} // namespace

double uncompressedBytes(const ImageDescription &image)
{
    double bytes = 0.0;
    for (const XrvBand &band : image.bands) {
        const int bytesPerCell = (band.bits + 7) / 8;
        bytes += static_cast<double>(image.width) * image.height * bytesPerCell;
    }
    return bytes;
}

Bytes makeJp2FileStart(const ImageDescription &image, bool isHighThroughput, const PacketIndex *index,
                       std::uint64_t streamLength)
{
    Bytes bytes = makeJp2Start(isHighThroughput);
    append(&bytes, makeHeaderBox(image));
    append(&bytes, makeGeoBox(geoTagsOf(image)));
    for (const std::string &xml : image.xmls)
        append(&bytes, makeBox(boxType("xml "), xml));
    // Readers that do not know the box pass over it (ISO/IEC 15444-1 I.8).
    if (index)
        append(&bytes, makeBox(kPacketIndexBox, index->content()));
    append(&bytes, makeBoxHeader(boxType("jp2c"), streamLength));
    return bytes;
}

Bytes makeXrvFileStart(const ImageDescription &image, XrvFileInfo info, const std::vector<CellMapping> &mappings,
                       const PLKFileStatistics &statistics, const PacketIndex *index, std::uint64_t streamLength)
{
    describe(image, &info);
    std::vector<TypedBox> boxes = makeXrvBoxes(image, info, mappings, statistics, index);
    const std::uint8_t version = mappings.empty() ? kXrvPlainVersion : kXrvMappedVersion;
    // The size of the file does not depend on what the rate is.
    const double fileSize = static_cast<double>(joinXrvBoxes(boxes, version, streamLength).size() + streamLength);
    info.actualRate = static_cast<float>(uncompressedBytes(image) / fileSize);
    boxes.front().second = makeBox(kFileInfoBox, makeFileInfo(info));
    return joinXrvBoxes(boxes, version, streamLength);
}

} // namespace xrv
