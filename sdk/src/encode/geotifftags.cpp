#include "geotifftags.h"

#include "geo/geotags.h"
#include "geo/tifffile.h"

#include <cstring>

namespace xrv {

namespace {

/// A little-endian TIFF file with one directory (TIFF 6.0, section 2).
class TiffBuilder
{
public:
    /// \a count: number of entries that will be added, in the order of their tags.
    explicit TiffBuilder(std::size_t count)
        : valuesAt(kHeaderSize + 2 + count * kEntrySize + 4)
    {
        bytes = {'I', 'I', 42, 0};
        put(&bytes, kHeaderSize, 4);
        put(&bytes, count, 2);
    }

    void addShort(std::uint32_t tag, std::uint64_t value) { addEntry(tag, 3, 1, value); }
    void addLong(std::uint32_t tag, std::uint64_t value) { addEntry(tag, 4, 1, value); }
    void add(std::uint32_t tag, const std::vector<std::uint16_t> &numbers)
    {
        Bytes content;
        for (const std::uint16_t number : numbers)
            put(&content, number, 2);
        addContent(tag, 3, numbers.size(), content);
    }
    void add(std::uint32_t tag, const std::vector<double> &numbers)
    {
        Bytes content;
        for (const double number : numbers) {
            std::uint64_t bits;
            std::memcpy(&bits, &number, sizeof bits);
            put(&content, bits, 8);
        }
        addContent(tag, 12, numbers.size(), content);
    }
    void add(std::uint32_t tag, const std::string &text)
    {
        Bytes content(text.begin(), text.end());
        content.push_back(0);
        addContent(tag, 2, content.size(), content);
    }
    Bytes take()
    {
        put(&bytes, 0, 4); // no other directory
        bytes.insert(bytes.end(), values.begin(), values.end());
        return std::move(bytes);
    }

private:
    static constexpr std::size_t kHeaderSize = 8, kEntrySize = 12;

    static void put(Bytes *to, std::uint64_t value, int count)
    {
        for (int i = 0; i < count; ++i)
            to->push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    void addEntry(std::uint32_t tag, std::uint64_t type, std::size_t count, std::uint64_t value)
    {
        put(&bytes, tag, 2);
        put(&bytes, type, 2);
        put(&bytes, count, 4);
        put(&bytes, value, 4);
    }
    /// What fits into the entry stands in it.
    void addContent(std::uint32_t tag, std::uint64_t type, std::size_t count, Bytes content)
    {
        if (content.size() <= 4) {
            std::uint64_t value = 0;
            for (std::size_t i = 0; i < content.size(); ++i)
                value |= std::uint64_t(content[i]) << (8 * i);
            addEntry(tag, type, count, value);
            return;
        }
        addEntry(tag, type, count, valuesAt + values.size());
        if (content.size() % 2 != 0)
            content.push_back(0);
        values.insert(values.end(), content.begin(), content.end());
    }

    const std::size_t valuesAt;
    Bytes bytes, values;
};

std::uint16_t lower16(std::size_t value)
{
    return static_cast<std::uint16_t>(value);
}

/// GeoKeys (OGC 19-008r4, 7.1.1): model type, raster type "pixel is area", the system.
void setKeys(const GeoReference &place, GeoTags *tags)
{
    constexpr std::uint16_t kModelType = 1024, kRasterType = 1025, kCitation = 1026, kGeodeticSystem = 2048,
                            kProjectedSystem = 3072;
    constexpr std::uint16_t kProjected = 1, kGeographic = 2, kUserDefined = 32767;
    const bool isGeographic = place.units == PLK_UNITS_DEGREES;
    std::vector<std::uint16_t> entries{kModelType, 0, 1, isGeographic ? kGeographic : kProjected, kRasterType, 0, 1, 1};
    if (place.datum != "RAW" || place.projection != "RAW") {
        tags->keyTexts = place.datum + " / " + place.projection + "|";
        entries.insert(entries.end(), {kCitation, lower16(kTagGeoAscii), lower16(tags->keyTexts.size()), 0});
    }
    const bool isCoded = place.epsg > 0 && place.epsg < kUserDefined;
    entries.insert(entries.end(), {isGeographic ? kGeodeticSystem : kProjectedSystem, 0, 1,
                                   isCoded ? lower16(static_cast<std::size_t>(place.epsg)) : kUserDefined});
    tags->keys = {1, 1, 0, lower16(entries.size() / 4)};
    tags->keys.insert(tags->keys.end(), entries.begin(), entries.end());
}

} // namespace

bool GeoTags::isEmpty() const
{
    return pixelScale.empty() && tiePoints.empty() && matrix.empty() && keys.empty() && rpc.empty();
}

GeoTags geoTagsOf(const Bytes &geoTiff)
{
    const TiffFile file(geoTiff);
    GeoTags tags;
    tags.pixelScale = file.doubles(kTagPixelScale);
    tags.tiePoints = file.doubles(kTagTiePoints);
    tags.matrix = file.doubles(kTagMatrix);
    if (tags.matrix.empty())
        tags.matrix = file.doubles(kTagOldMatrix);
    tags.keys = file.shorts(kTagGeoKeys);
    tags.keyDoubles = file.doubles(kTagGeoDoubles);
    tags.keyTexts = file.text(kTagGeoAscii);
    tags.rpc = file.doubles(kTagRpc);
    return tags;
}

GeoTags makeGeoTags(const GeoReference &place)
{
    GeoTags tags;
    if (place.origin == GeoReference::Origin::None)
        return tags;
    const std::array<double, 6> &t = place.transform;
    if (t[2] == 0.0 && t[4] == 0.0 && t[1] > 0.0 && t[5] < 0.0) {
        tags.pixelScale = {t[1], -t[5], 0.0};
        tags.tiePoints = {0.0, 0.0, 0.0, t[0], t[3], 0.0};
    } else {
        tags.matrix = {t[1], t[2], 0.0, t[0], t[4], t[5], 0.0, t[3], 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 1.0};
    }
    setKeys(place, &tags);
    return tags;
}

Bytes makeGeoTiff(const GeoTags &tags)
{
    constexpr std::size_t kPictureTags = 9;
    std::size_t count = kPictureTags + (tags.keyTexts.empty() ? 0 : 1) + (tags.keys.empty() ? 0 : 1);
    for (const auto *numbers : {&tags.pixelScale, &tags.tiePoints, &tags.matrix, &tags.keyDoubles, &tags.rpc})
        count += numbers->empty() ? 0 : 1;

    TiffBuilder tiff(count);
    tiff.addShort(256, 1); // width
    tiff.addShort(257, 1); // length
    tiff.addShort(258, 8); // bits per sample
    tiff.addShort(259, 1); // no compression
    tiff.addShort(262, 1); // black is zero
    tiff.addLong(273, 0);  // the one cell: any byte will do
    tiff.addShort(277, 1); // samples per pixel
    tiff.addShort(278, 1); // rows per strip
    tiff.addLong(279, 1);  // bytes of the strip
    const auto addNumbers = [&tiff](std::uint32_t tag, const auto &numbers) {
        if (!numbers.empty())
            tiff.add(tag, numbers);
    };
    addNumbers(kTagPixelScale, tags.pixelScale);
    addNumbers(kTagTiePoints, tags.tiePoints);
    addNumbers(kTagMatrix, tags.matrix);
    addNumbers(kTagGeoKeys, tags.keys);
    addNumbers(kTagGeoDoubles, tags.keyDoubles);
    addNumbers(kTagGeoAscii, tags.keyTexts);
    addNumbers(kTagRpc, tags.rpc);
    return tiff.take();
}

} // namespace xrv
