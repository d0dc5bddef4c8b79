#include "boxes.h"

#include "base/bytewriter.h"
#include "container/boxtype.h"
#include "container/colourbox.h"
#include "geo/geojp2.h"

#include <algorithm>
#include <limits>

namespace xrv {

namespace {

constexpr std::uint16_t kUnspecified = 65535;

std::uint8_t depthCode(const XrvBand &band)
{
    return static_cast<std::uint8_t>((band.bits - 1) | (band.isSigned ? 0x80 : 0));
}

Bytes depthCodes(const ImageDescription &image)
{
    Bytes codes;
    for (const XrvBand &band : image.bands)
        codes.push_back(depthCode(band));
    return codes;
}

bool isUniform(const Bytes &codes)
{
    return std::all_of(codes.begin(), codes.end(), [&](std::uint8_t code) { return code == codes.front(); });
}

Bytes makeImageHeader(const ImageDescription &image)
{
    const Bytes codes = depthCodes(image);
    Bytes content;
    ByteWriter out(&content);
    out.u32(image.height);
    out.u32(image.width);
    out.u16(static_cast<std::uint32_t>(image.bands.size()));
    out.u8(isUniform(codes) ? codes.front() : 255);
    out.u8(7); // JPEG 2000
    out.u8(0);
    out.u8(0);
    return makeBox(boxType("ihdr"), content);
}

Bytes makeColour(const ImageDescription &image)
{
    Bytes content{1, 0, 0};
    ByteWriter(&content).u32(image.colourSpace == PLK_COLORSPACE_SRGB ? kSRgbSpace : kGreySpace);
    return makeBox(boxType("colr"), content);
}

/// I.5.3.6. Every channel is told, so that no reader has to guess: three bands of 8 bits are not always a picture.
Bytes makeDefinitions(const ImageDescription &image)
{
    const std::size_t count = image.bands.size();
    const std::size_t colours = image.colourSpace == PLK_COLORSPACE_SRGB ? 3 : 1;
    Bytes content;
    ByteWriter out(&content);
    out.u16(static_cast<std::uint32_t>(count));
    for (std::size_t i = 0; i < count; ++i) {
        const bool isOpacity = image.isLastOpacity && i + 1 == count;
        const bool isColour = !isOpacity && i < colours;
        out.u16(static_cast<std::uint32_t>(i));
        out.u16(isOpacity ? 1 : isColour ? 0 : kUnspecified);
        out.u16(isOpacity ? 0 : isColour ? static_cast<std::uint32_t>(i + 1) : kUnspecified);
    }
    return makeBox(boxType("cdef"), content);
}

} // namespace

Bytes makeBoxHeader(std::uint32_t type, std::uint64_t contentLength)
{
    Bytes bytes;
    ByteWriter out(&bytes);
    const bool isLong = contentLength > std::numeric_limits<std::uint32_t>::max() - 8;
    out.u32(isLong ? 1 : static_cast<std::uint32_t>(contentLength + 8));
    out.u32(type);
    if (isLong) {
        out.u32(static_cast<std::uint32_t>((contentLength + 16) >> 32));
        out.u32(static_cast<std::uint32_t>(contentLength + 16));
    }
    return bytes;
}

Bytes makeBox(std::uint32_t type, const Bytes &content)
{
    Bytes bytes = makeBoxHeader(type, content.size());
    bytes.insert(bytes.end(), content.begin(), content.end());
    return bytes;
}

Bytes makeBox(std::uint32_t type, const std::string &content)
{
    return makeBox(type, Bytes(content.begin(), content.end()));
}

Bytes makeJp2Start(bool isHighThroughput)
{
    Bytes bytes = makeBox(boxType("jP  "), Bytes{0x0d, 0x0a, 0x87, 0x0a});
    const std::string brand = isHighThroughput ? "jph " : "jp2 ";
    const Bytes fileType = makeBox(boxType("ftyp"), brand + std::string(4, '\0') + brand);
    bytes.insert(bytes.end(), fileType.begin(), fileType.end());
    return bytes;
}

Bytes makeHeaderBox(const ImageDescription &image)
{
    Bytes content = makeImageHeader(image);
    const auto append = [&content](const Bytes &box) { content.insert(content.end(), box.begin(), box.end()); };
    const Bytes codes = depthCodes(image);
    if (!isUniform(codes))
        append(makeBox(boxType("bpcc"), codes));
    append(makeColour(image));
    append(makeDefinitions(image));
    return makeBox(boxType("jp2h"), content);
}

Bytes makeGeoBox(const GeoTags &tags)
{
    if (tags.isEmpty())
        return {};
    Bytes content(kGeoJp2Uuid.begin(), kGeoJp2Uuid.end());
    const Bytes tiff = makeGeoTiff(tags);
    content.insert(content.end(), tiff.begin(), tiff.end());
    return makeBox(boxType("uuid"), content);
}

} // namespace xrv
