#include "headerboxes.h"

#include "base/bytecursor.h"

#include <algorithm>
#include <limits>

namespace xrv {

namespace {

constexpr std::uint64_t kMaxProfile = 16u << 20;
// The largest palette: 1024 entries of 255 columns of 5 bytes.
constexpr std::uint64_t kMaxSmallBox = 2u << 20;

bool parseImageHeader(ByteCursor cursor, HeaderBoxes *header)
{
    ImageHeader image;
    image.height = cursor.u32();
    image.width = cursor.u32();
    image.components = cursor.u16();
    image.depthCode = cursor.u8();
    image.compression = cursor.u8();
    if (!cursor.ok())
        return false;
    header->imageHeader = image;
    return true;
}

bool parseDepths(ByteCursor cursor, HeaderBoxes *header)
{
    std::vector<BitDepth> depths;
    while (!cursor.atEnd()) {
        depths.push_back(depthOf(cursor.u8()));
        if (depths.back().bits > kMaxBits)
            return false;
    }
    header->depths = std::move(depths);
    return true;
}

// Values are stored in whole bytes with the unused high bits of any value (ISO/IEC 15444-1 I.5.3.4).
std::int64_t paletteValue(ByteCursor &cursor, BitDepth depth)
{
    std::uint64_t value = 0;
    for (int bits = 0; bits < depth.bits; bits += 8)
        value = value << 8 | cursor.u8();
    value &= (std::uint64_t(1) << depth.bits) - 1;
    const bool isNegative = depth.isSigned && value >> (depth.bits - 1) & 1;
    return static_cast<std::int64_t>(value) - (isNegative ? std::int64_t(1) << depth.bits : 0);
}

bool parsePalette(ByteCursor cursor, HeaderBoxes *header)
{
    Palette palette;
    palette.entries = cursor.u16();
    const int columns = cursor.u8();
    if (palette.entries < 1 || palette.entries > 1024 || columns < 1)
        return false;
    std::size_t bytesPerEntry = 0;
    for (int column = 0; column < columns; ++column) {
        palette.columns.push_back(depthOf(cursor.u8()));
        bytesPerEntry += (palette.columns.back().bits + 7u) / 8;
        if (palette.columns.back().bits > kMaxBits)
            return false;
    }
    if (!cursor.ok() || cursor.remaining() < bytesPerEntry * palette.entries)
        return false;
    palette.values.reserve(palette.entries * palette.columns.size());
    for (std::uint32_t entry = 0; entry < palette.entries; ++entry) {
        for (const BitDepth &depth : palette.columns)
            palette.values.push_back(paletteValue(cursor, depth));
    }
    header->palette = std::move(palette);
    return true;
}

bool parseMapping(ByteCursor cursor, HeaderBoxes *header)
{
    std::vector<ChannelMapping> mapping;
    while (cursor.remaining() >= 4) {
        ChannelMapping channel;
        channel.component = cursor.u16();
        const int type = cursor.u8();
        channel.usesPalette = type == 1;
        channel.paletteColumn = cursor.u8();
        if (type > 1)
            return false;
        mapping.push_back(channel);
    }
    header->mapping = std::move(mapping);
    return !header->mapping.empty();
}

bool parseDefinitions(ByteCursor cursor, HeaderBoxes *header)
{
    const int count = cursor.u16();
    std::vector<ChannelDefinition> definitions;
    for (int i = 0; i < count; ++i) {
        ChannelDefinition definition;
        definition.channel = cursor.u16();
        definition.type = cursor.u16();
        definition.association = cursor.u16();
        if (!cursor.ok())
            return false;
        definitions.push_back(definition);
    }
    header->definitions = std::move(definitions);
    return !header->definitions.empty();
}

// Codestream registration (ISO/IEC 15444-2 M.11.7.7): grid size, then number, sampling and offset of each codestream.
bool parseRegistration(ByteCursor cursor, HeaderBoxes *header)
{
    cursor.skip(4);
    while (cursor.remaining() >= 6) {
        header->codestreams.push_back(cursor.u16());
        cursor.skip(4);
    }
    return cursor.ok();
}

bool parseOpacity(ByteCursor cursor, HeaderBoxes *header)
{
    header->opacityType = cursor.u8();
    return cursor.ok();
}

bool isThere(std::uint32_t type, const HeaderBoxes &header)
{
    switch (type) {
    case boxType("ihdr"):
        return header.imageHeader.has_value();
    case boxType("bpcc"):
        return !header.depths.empty();
    case boxType("pclr"):
        return header.palette.has_value();
    case boxType("cmap"):
        return !header.mapping.empty();
    case boxType("cdef"):
        return !header.definitions.empty();
    case boxType("creg"):
        return !header.codestreams.empty();
    case boxType("opct"):
        return header.opacityType.has_value();
    default:
        return false;
    }
}

} // namespace

BitDepth depthOf(std::uint8_t code)
{
    return {static_cast<std::uint8_t>((code & 0x7f) + 1), (code & 0x80) != 0};
}

bool HeaderBoxReader::parse(std::uint32_t type, const Bytes &content, HeaderBoxes *header)
{
    const ByteCursor cursor(content.data(), content.size());
    switch (type) {
    case boxType("ihdr"):
        return parseImageHeader(cursor, header);
    case boxType("bpcc"):
        return parseDepths(cursor, header);
    case boxType("pclr"):
        return parsePalette(cursor, header);
    case boxType("cmap"):
        return parseMapping(cursor, header);
    case boxType("cdef"):
        return parseDefinitions(cursor, header);
    case boxType("creg"):
        return parseRegistration(cursor, header);
    default:
        return parseOpacity(cursor, header);
    }
}

void HeaderBoxReader::damaged(std::uint32_t type)
{
    warnings.add("The '" + boxTypeName(type) + "' box of the header is damaged and is ignored.");
}

void HeaderBoxReader::readColour(const Box &box, HeaderBoxes *header)
{
    // More than a handful of colour boxes has no use; each may hold a profile.
    constexpr std::size_t kMaxColours = 16;
    Bytes content;
    if (header->colours.size() < kMaxColours && reader.keptContent(box, kMaxProfile, &content))
        header->colours.push_back(parseColourBox(content));
}

bool HeaderBoxReader::read(const Box &box, HeaderBoxes *header)
{
    switch (box.type) {
    case boxType("colr"):
        readColour(box, header);
        return true;
    case boxType("ihdr"):
    case boxType("bpcc"):
    case boxType("pclr"):
    case boxType("cmap"):
    case boxType("cdef"):
    case boxType("creg"):
    case boxType("opct"):
        break;
    default:
        return false;
    }
    if (isThere(box.type, *header)) {
        warnings.add("There is a second '" + boxTypeName(box.type) + "' box in the header; only the first one counts.");
        return true;
    }
    Bytes content;
    if (reader.content(box, kMaxSmallBox, &content) && !parse(box.type, content, header))
        damaged(box.type);
    return true;
}

} // namespace xrv
