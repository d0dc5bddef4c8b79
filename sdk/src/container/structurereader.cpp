#include "structurereader.h"

#include "fragmenttable.h"

#include "base/bytecursor.h"

#include <algorithm>
#include <array>

namespace xrv {

namespace {

constexpr int kMaxDepth = 16;
constexpr std::uint64_t kMaxUuid = 16u << 20;
constexpr std::uint64_t kMaxGml = 16u << 20;
constexpr std::uint64_t kMaxLabel = 4096;
constexpr std::size_t kMaxLayers = 16;
// ISO/IEC 15444-1 table A.9.
constexpr int kMaxComponents = 16384;

// Boxes that hold boxes: ISO/IEC 15444-1 table I.2, ISO/IEC 15444-2 table M.13.
bool isSuperBox(std::uint32_t type)
{
    switch (type) {
    case boxType("jp2h"):
    case boxType("jpch"):
    case boxType("jplh"):
    case boxType("cgrp"):
    case boxType("asoc"):
    case boxType("uinf"):
    case boxType("drep"):
    case boxType("comp"):
    case boxType("grp "):
    case boxType("jclx"):
        return true;
    default:
        return false;
    }
}

// Texts in boxes have no terminator, but writers put one there.
std::string textOf(const Bytes &bytes)
{
    std::string text(bytes.begin(), bytes.end());
    text.erase(std::find_if(text.rbegin(), text.rend(), [](char c) { return c != '\0'; }).base(), text.end());
    return text;
}

} // namespace

StructureReader::StructureReader(ByteSource &source, std::vector<std::string> *sentences)
    : source(source)
    , warnings(sentences)
    , reader(source, warnings)
    , headerReader(reader, warnings)
{
}

PLK::CError StructureReader::read(Jp2Structure *structure)
{
    Place file;
    file.header = &general;
    walk({0, source.size()}, file);
    if (lostAfterCodestream)
        extendCodestream();
    if (!hasCodestream && !fragmentError)
        searchCodestream();
    if (reader.failed())
        return reader.error();
    if (!hasCodestream)
        return whyNoCodestream();
    if (!hasHeader)
        warnings.add("The file has no JP2 header; the codestream alone tells what it holds.");
    fillImage();
    fillColour();
    found.hasGmlBox = found.hasGmlBox || !found.gml.empty();
    *structure = std::move(found);
    return {};
}

void StructureReader::walk(ByteRange range, Place place)
{
    BoxReader::Position position = BoxReader::startOf(range);
    Box box;
    while (reader.next(&position, &box)) {
        ranOut = ranOut || (box.missing > 0 && box.end() == source.size());
        handle(box, &place);
    }
    const bool isCodestreamLast =
        hasCodestream && box.type == boxType("jp2c") && box.content.offset == found.codestream.offset;
    ranOut = ranOut || (position.lostTrack && source.size() - position.next < 8);
    lostAfterCodestream = lostAfterCodestream || (position.lostTrack && place.depth == 0 && isCodestreamLast);
}

void StructureReader::handle(const Box &box, Place *place)
{
    if (isSuperBox(box.type)) {
        enter(box, *place);
        return;
    }
    switch (box.type) {
    case boxType("jp2c"):
        codestreamFound(box, *place);
        return;
    case boxType("ftbl"):
        fragmentsFound(box);
        return;
    case boxType("lbl "):
        labelFound(box, place);
        return;
    case boxType("xml "):
        xmlFound(box, *place);
        return;
    case boxType("uuid"):
        uuidFound(box);
        return;
    case boxType("ftyp"):
        fileTypeFound(box);
        return;
    default:
        if (place->header && headerReader.read(box, place->header)) {
            if (!place->inHeader)
                warnings.add("Box '" + boxTypeName(box.type) + "' stands outside of the header.");
        } else if (place->depth == 0 && box.missing == 0) {
            found.otherBoxes.push_back({box.type, box.content});
        }
    }
}

void StructureReader::enter(const Box &box, const Place &outer)
{
    if (outer.depth >= kMaxDepth) {
        warnings.add("Boxes are nested too deep; those below box '" + boxTypeName(box.type) + "' are ignored.");
        return;
    }
    Place place = outer;
    ++place.depth;
    place.inAssociation = box.type == boxType("asoc");
    HeaderBoxes ignored;
    if (box.type == boxType("jp2h")) {
        hasHeader = true;
        place.inHeader = true;
    } else if (box.type == boxType("jpch")) {
        place.inHeader = true;
        place.header = &ignored;
        if (codestreamHeaders++ == 0)
            place.header = &first.emplace();
    } else if (box.type == boxType("jplh")) {
        place.inHeader = true;
        place.header = &ignored;
        // Never grows beyond what is reserved, so that the header stays where it is.
        layers.reserve(kMaxLayers);
        if (layers.size() < kMaxLayers)
            place.header = &layers.emplace_back();
    } else if (place.inAssociation) {
        place.label.clear();
    }
    walk(box.content, place);
}

void StructureReader::codestreamFound(const Box &box, const Place &place)
{
    if (hasCodestream || fragmentError)
        return;
    if (place.depth > 0)
        warnings.add("The codestream stands inside of another box.");
    hasCodestream = true;
    found.codestream = box.content;
}

void StructureReader::fragmentsFound(const Box &box)
{
    if (hasCodestream || fragmentError)
        return;
    ByteRange codestream;
    fragmentError = readFragmentTable(reader, box, &codestream);
    if (fragmentError)
        return;
    if (codestream.offset >= source.size()) {
        fragmentError = {PLK_ERR_TRUNCATED, "The file ends before its codestream begins."};
        return;
    }
    const std::uint64_t available = source.size() - codestream.offset;
    if (codestream.length > available)
        warnings.add("The file ends " + std::to_string(codestream.length - available) +
                     " bytes before its codestream.");
    codestream.length = std::min(codestream.length, available);
    hasCodestream = true;
    found.codestream = codestream;
}

void StructureReader::labelFound(const Box &box, Place *place)
{
    Bytes bytes;
    if (!place->inAssociation || !reader.content(box, kMaxLabel, &bytes))
        return;
    place->label = textOf(bytes);
    if (place->label == "gml.data") {
        place->inGml = true;
        found.hasGmlBox = true;
    }
}

void StructureReader::xmlFound(const Box &box, const Place &place)
{
    found.xmlBoxes.push_back({box.type, box.content});
    Bytes bytes;
    if (place.inGml && reader.keptContent(box, kMaxGml, &bytes))
        found.gml.push_back({place.label, textOf(bytes)});
}

void StructureReader::uuidFound(const Box &box)
{
    UuidBox uuid;
    if (box.content.length < uuid.uuid.size()) {
        warnings.add("A UUID box without a UUID is ignored.");
        return;
    }
    if (!reader.keptContent(box, kMaxUuid, &uuid.content))
        return;
    const auto contentBegin = uuid.content.begin() + static_cast<std::ptrdiff_t>(uuid.uuid.size());
    std::copy(uuid.content.begin(), contentBegin, uuid.uuid.begin());
    uuid.content.erase(uuid.content.begin(), contentBegin);
    found.uuidBoxes.push_back(std::move(uuid));
}

void StructureReader::fileTypeFound(const Box &box)
{
    Bytes bytes;
    if (brand != 0 || !reader.bytesAt({box.content.offset, std::min<std::uint64_t>(box.content.length, 4)}, &bytes))
        return;
    ByteCursor cursor(bytes.data(), bytes.size());
    brand = cursor.u32();
}

// Lengths of more than 32 bits that were written into 32 are met in real files, and tails that are no boxes. The
// decoder ends at the codestream's own end, so too much does no harm.
void StructureReader::extendCodestream()
{
    found.codestream.length = source.size() - found.codestream.offset;
}

// Damage to a box length hides all that follows. The start of a codestream in its box can still be told (ISO/IEC
// 15444-1 I.5.4, A.4.1, A.5.1).
void StructureReader::searchCodestream()
{
    constexpr std::uint64_t kSearched = 4u << 20;
    constexpr std::array<std::uint8_t, 8> kStart{'j', 'p', '2', 'c', 0xff, 0x4f, 0xff, 0x51};
    Bytes bytes;
    if (!reader.bytesAt({0, kSearched}, &bytes))
        return;
    const auto at = std::search(bytes.begin(), bytes.end(), kStart.begin(), kStart.end());
    if (at == bytes.end())
        return;
    warnings.add(reader.isAtLimit() ? "Beyond the boxes that are read, the codestream was found by searching."
                                    : "The boxes of the file are damaged; its codestream was found by searching.");
    hasCodestream = true;
    found.codestream.offset = static_cast<std::uint64_t>(at - bytes.begin()) + 4;
    extendCodestream();
}

PLK::CError StructureReader::whyNoCodestream() const
{
    if (fragmentError)
        return fragmentError;
    if (brand == boxType("mjp2"))
        return {PLK_ERR_UNSUPPORTED, "Motion JPEG 2000 files are not supported."};
    if (brand == boxType("jpm "))
        return {PLK_ERR_UNSUPPORTED, "JPEG 2000 compound documents are not supported."};
    if (reader.isAtLimit())
        return {PLK_ERR_UNSUPPORTED, "The file has more than " + std::to_string(BoxReader::kMaxBoxes) +
                                         " boxes before its codestream, which is not supported."};
    if (ranOut)
        return {PLK_ERR_TRUNCATED, "The file ends before its codestream begins."};
    return {PLK_ERR_MALFORMED, "The file has no JPEG 2000 codestream."};
}

// The header of the codestream overrides the general one, box by box (ISO/IEC 15444-2 M.11.5, M.11.6).
void StructureReader::fillImage()
{
    HeaderBoxes &own = first ? *first : general;
    if (const auto &image = own.imageHeader ? own.imageHeader : general.imageHeader)
        fillDepths(*image, own.imageHeader ? own : general);
    found.palette = std::move(own.palette ? own.palette : general.palette);
    found.mapping = std::move(own.mapping.empty() ? general.mapping : own.mapping);
}

void StructureReader::fillDepths(const ImageHeader &image, const HeaderBoxes &header)
{
    if (image.compression != 7)
        warnings.add("The image header names a compression that is not JPEG 2000.");
    if (image.width == 0 || image.height == 0 || image.components == 0 || image.components > kMaxComponents) {
        warnings.add("The image header gives an impossible size or number of components and is ignored.");
        return;
    }
    found.imageWidth = image.width;
    found.imageHeight = image.height;
    const BitDepth depth = depthOf(image.depthCode);
    if (image.depthCode != 255 && depth.bits <= kMaxBits) {
        found.depths.assign(image.components, depth);
    } else if (header.depths.size() == image.components) {
        found.depths = header.depths;
    } else {
        warnings.add("The header does not tell the depth of every component.");
    }
}

// The compositing layer that shows the first codestream: the first one that names it, or names none at all.
const HeaderBoxes *StructureReader::firstLayer() const
{
    for (const HeaderBoxes &layer : layers) {
        const bool isNamed =
            std::find(layer.codestreams.begin(), layer.codestreams.end(), 0) != layer.codestreams.end();
        const bool isFirst = layer.codestreams.empty() && &layer == &layers.front();
        if (isNamed || isFirst)
            return &layer;
    }
    return nullptr;
}

void StructureReader::fillColour()
{
    const HeaderBoxes *layer = firstLayer();
    const bool hasOwnColour = layer && !layer->colours.empty();
    found.colour = chooseColour(hasOwnColour ? layer->colours : general.colours);
    found.definitions = layer && !layer->definitions.empty() ? layer->definitions : general.definitions;

    // An opacity box says that the last channel is the opacity, in place of definitions (ISO/IEC 15444-2 M.11.7.6).
    const std::size_t channels = found.mapping.empty() ? found.depths.size() : found.mapping.size();
    if (!layer || !layer->opacityType || *layer->opacityType > 1 || !layer->definitions.empty() || channels < 2)
        return;
    found.definitions.clear();
    for (std::size_t channel = 0; channel + 1 < channels; ++channel) {
        const auto number = static_cast<std::uint16_t>(channel);
        found.definitions.push_back({number, 0, static_cast<std::uint16_t>(number + 1)});
    }
    found.definitions.push_back(
        {static_cast<std::uint16_t>(channels - 1), static_cast<std::uint16_t>(*layer->opacityType == 0 ? 1 : 2), 0});
}

} // namespace xrv
