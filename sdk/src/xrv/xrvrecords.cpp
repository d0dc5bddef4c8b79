#include "xrvrecords.h"

#include "base/bytecursor.h"
#include "base/bytewriter.h"
#include "base/utf8.h"
#include "base/varint.h"
#include "geo/rpc.h"

#include <xrv60/plkinit.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace xrv {

namespace {

constexpr std::uint8_t kFlagLossless = 1;
constexpr std::uint8_t kFlagPlace = 2;
constexpr std::uint32_t kNoText = 0xFFFFFFFF;
constexpr std::size_t kMaxText = 1u << 20;
constexpr std::size_t kMaxBuckets = 65536;
constexpr std::size_t kMaxBucketsOfAllBands = 4u << 20; // 32 MiB
constexpr std::uint8_t kMaxBits = 38;

template <typename To, typename From> To bitsAs(From value)
{
    static_assert(sizeof(To) == sizeof(From), "same size");
    To result;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

void putFloat(ByteWriter *out, float value)
{
    out->u32(bitsAs<std::uint32_t>(value));
}

void putLong(ByteWriter *out, std::uint64_t value)
{
    out->u32(static_cast<std::uint32_t>(value >> 32));
    out->u32(static_cast<std::uint32_t>(value));
}

void putDouble(ByteWriter *out, double value)
{
    putLong(out, bitsAs<std::uint64_t>(value));
}

float takeFloat(ByteCursor *in)
{
    return bitsAs<float>(in->u32());
}

double takeDouble(ByteCursor *in)
{
    return bitsAs<double>(in->u64());
}

void putShortText(ByteWriter *out, const std::string &text)
{
    const std::size_t length = std::min<std::size_t>(text.size(), 0xFFFF);
    out->u16(static_cast<std::uint32_t>(length));
    out->append(reinterpret_cast<const std::uint8_t *>(text.data()), length);
}

/// False where the bytes end or are no UTF-8. Texts go to callers as C strings: they end at a zero.
bool takeText(ByteCursor *in, std::size_t length, std::string *text)
{
    if (!in->ok() || length > in->remaining() || length > kMaxText)
        return false;
    text->assign(reinterpret_cast<const char *>(in->here()), length);
    text->erase(std::find(text->begin(), text->end(), '\0'), text->end());
    in->skip(length);
    return isValidUtf8(*text);
}

bool takeShortText(ByteCursor *in, std::string *text)
{
    const std::size_t length = in->u16();
    return takeText(in, length, text);
}

template <typename Enum> bool takeEnum(ByteCursor *in, int last, Enum *value)
{
    const int number = in->u8();
    *value = static_cast<Enum>(number);
    return number <= last;
}

void putHistogram(Bytes *bytes, const std::uint64_t *buckets, std::uint32_t count)
{
    for (std::uint32_t i = 0; i < count;) {
        appendVarint(bytes, buckets[i]);
        if (buckets[i] != 0) {
            ++i;
            continue;
        }
        std::uint32_t run = 1;
        while (i + run < count && buckets[i + run] == 0)
            ++run;
        appendVarint(bytes, run - 1);
        i += run;
    }
}

bool takeHistogram(ByteCursor *in, PLKBandStatistics *band)
{
    for (std::uint32_t i = 0; i < band->nHistBucketCount;) {
        std::uint64_t more = 0;
        if (!readVarint(in, &band->pHistogram[i]))
            return false;
        if (band->pHistogram[i] == 0 && !readVarint(in, &more))
            return false;
        if (more >= band->nHistBucketCount - i)
            return false;
        i += 1 + static_cast<std::uint32_t>(more);
    }
    return true;
}

bool takeBandStatistics(ByteCursor *in, std::size_t maxBuckets, PLKBandStatistics *band)
{
    for (float *value : {&band->fMode, &band->fMin, &band->fMax, &band->fMean, &band->fMedian, &band->fStandardDev}) {
        *value = takeFloat(in);
        if (!std::isfinite(*value))
            return false;
    }
    const std::uint32_t buckets = in->u32();
    // Four bytes can stand for 65536 empty buckets, so the content's length bounds nothing.
    if (!in->ok() || buckets == 0 || buckets > maxBuckets)
        return false;
    band->pHistogram = new std::uint64_t[buckets]();
    band->nHistBucketCount = buckets;
    return takeHistogram(in, band);
}

} // namespace

Bytes makeContents(const std::vector<XrvBoxPlace> &places)
{
    Bytes bytes;
    ByteWriter out(&bytes);
    for (const XrvBoxPlace &place : places) {
        out.u32(place.type);
        putLong(&out, place.range.offset);
        putLong(&out, place.range.length);
    }
    return bytes;
}

std::vector<XrvBoxPlace> parseContents(const Bytes &content)
{
    ByteCursor in(content.data(), content.size());
    std::vector<XrvBoxPlace> places;
    while (in.remaining() >= kXrvBoxPlaceBytes) {
        XrvBoxPlace place;
        place.type = in.u32();
        place.range.offset = in.u64();
        place.range.length = in.u64();
        places.push_back(place);
    }
    return places;
}

Bytes makeFileInfo(const XrvFileInfo &info)
{
    Bytes bytes;
    ByteWriter out(&bytes);
    out.u8(static_cast<std::uint8_t>(info.cellType));
    out.u8(static_cast<std::uint8_t>(info.colourSpace));
    out.u8(static_cast<std::uint8_t>(info.units));
    out.u8((info.isLossless ? kFlagLossless : 0u) | (info.hasPlace ? kFlagPlace : 0u));
    out.u16(info.bands);
    out.u16(info.targetRate);
    putFloat(&out, info.actualRate);
    out.u32(info.tileWidth);
    out.u32(info.tileHeight);
    for (const double number : info.transform)
        putDouble(&out, number);
    out.u32(static_cast<std::uint32_t>(info.epsg));
    putShortText(&out, info.datum);
    putShortText(&out, info.projection);
    putShortText(&out, info.compressionDate);
    return bytes;
}

std::optional<XrvFileInfo> parseFileInfo(const Bytes &content)
{
    ByteCursor in(content.data(), content.size());
    XrvFileInfo info;
    const bool isKnown = takeEnum(&in, PLKCT_DOUBLE, &info.cellType) &&
                         takeEnum(&in, PLK_COLORSPACE_YCBCR, &info.colourSpace) &&
                         takeEnum(&in, PLK_UNITS_FEET, &info.units);
    const std::uint8_t flags = in.u8();
    info.isLossless = flags & kFlagLossless;
    info.hasPlace = flags & kFlagPlace;
    info.bands = in.u16();
    info.targetRate = in.u16();
    info.actualRate = takeFloat(&in);
    info.tileWidth = in.u32();
    info.tileHeight = in.u32();
    for (double &number : info.transform)
        number = takeDouble(&in);
    info.epsg = static_cast<std::int32_t>(in.u32());
    const bool hasTexts = takeShortText(&in, &info.datum) && takeShortText(&in, &info.projection) &&
                          takeShortText(&in, &info.compressionDate);
    if (!in.ok() || !isKnown || !hasTexts || info.bands == 0 || info.epsg < 0)
        return std::nullopt;
    if (!std::isfinite(info.actualRate) || info.actualRate < 0.0f)
        info.actualRate = 0.0f;
    return info;
}

Bytes makeBands(const std::vector<XrvBand> &bands)
{
    Bytes bytes;
    ByteWriter out(&bytes);
    out.u16(static_cast<std::uint32_t>(bands.size()));
    for (const XrvBand &band : bands) {
        out.u8(band.bits);
        out.u8(band.isSigned ? 1 : 0);
        putShortText(&out, band.description);
    }
    return bytes;
}

std::optional<std::vector<XrvBand>> parseBands(const Bytes &content)
{
    ByteCursor in(content.data(), content.size());
    std::vector<XrvBand> bands(in.u16());
    for (XrvBand &band : bands) {
        band.bits = in.u8();
        const std::uint8_t sign = in.u8();
        band.isSigned = sign == 1;
        if (band.bits == 0 || band.bits > kMaxBits || sign > 1 || !takeShortText(&in, &band.description))
            return std::nullopt;
    }
    return in.ok() ? std::optional(std::move(bands)) : std::nullopt;
}

Bytes makeCellMappings(const std::vector<CellMapping> &mappings)
{
    Bytes bytes;
    ByteWriter out(&bytes);
    out.u16(static_cast<std::uint32_t>(mappings.size()));
    for (const CellMapping &mapping : mappings) {
        out.u8(static_cast<std::uint8_t>(mapping.form));
        if (!mapping.isMapped())
            continue;
        putLong(&out, static_cast<std::uint64_t>(mapping.base));
        out.u32(mapping.largest);
        out.u8(mapping.lowBits);
        putDouble(&out, mapping.stepsPerUnit);
        out.u8(mapping.hidden ? 1 : 0);
        out.u32(static_cast<std::uint32_t>(mapping.hidden.value_or(0)));
    }
    return bytes;
}

std::optional<std::vector<CellMapping>> parseCellMappings(const Bytes &content)
{
    ByteCursor in(content.data(), content.size());
    std::vector<CellMapping> mappings(in.u16());
    for (CellMapping &mapping : mappings) {
        if (!takeEnum(&in, static_cast<int>(CellMapping::Form::FloatSteps), &mapping.form) || !in.ok())
            return std::nullopt;
        if (!mapping.isMapped())
            continue;
        mapping.base = static_cast<std::int64_t>(in.u64());
        mapping.largest = in.u32();
        mapping.lowBits = in.u8();
        mapping.stepsPerUnit = takeDouble(&in);
        const std::uint8_t isHiding = in.u8();
        const auto hidden = static_cast<std::int32_t>(in.u32());
        if (isHiding == 1)
            mapping.hidden = hidden;
        // What 32 bits hold, with a sign or without.
        const bool isInRange = mapping.base >= std::numeric_limits<std::int32_t>::min() &&
                               mapping.base <= std::numeric_limits<std::uint32_t>::max();
        // So no number of steps is beyond the largest Float.
        constexpr double kMostSteps = 1e28;
        const bool isStep = mapping.stepsPerUnit >= 1.0 / kMostSteps && mapping.stepsPerUnit <= kMostSteps;
        if (isHiding > 1 || !isInRange || mapping.lowBits >= mapping.bits() || !isStep)
            return std::nullopt;
    }
    return in.ok() && !mappings.empty() ? std::optional(std::move(mappings)) : std::nullopt;
}

Bytes makeTexts(const XrvTexts &texts)
{
    Bytes bytes;
    ByteWriter out(&bytes);
    out.u8(kXrvTexts);
    for (const std::optional<std::string> &text : texts) {
        out.u32(text ? static_cast<std::uint32_t>(text->size()) : kNoText);
        if (text)
            out.append(reinterpret_cast<const std::uint8_t *>(text->data()), text->size());
    }
    return bytes;
}

std::optional<XrvTexts> parseTexts(const Bytes &content)
{
    ByteCursor in(content.data(), content.size());
    const std::size_t count = std::min<std::size_t>(in.u8(), kXrvTexts);
    XrvTexts texts;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t length = in.u32();
        if (length == kNoText)
            continue;
        texts[i].emplace();
        if (!takeText(&in, length, &*texts[i]))
            return std::nullopt;
    }
    return in.ok() ? std::optional(std::move(texts)) : std::nullopt;
}

Bytes makeStatistics(const PLKFileStatistics &statistics)
{
    Bytes bytes;
    ByteWriter out(&bytes);
    out.u16(statistics.nBands);
    for (std::uint32_t i = 0; i < statistics.nBands; ++i) {
        const PLKBandStatistics &band = statistics.pBandStats[i];
        for (const float value : {band.fMode, band.fMin, band.fMax, band.fMean, band.fMedian, band.fStandardDev})
            putFloat(&out, value);
        out.u32(band.nHistBucketCount);
        putHistogram(&bytes, band.pHistogram, band.nHistBucketCount);
    }
    return bytes;
}

StatisticsPtr parseStatistics(const Bytes &content, std::size_t bands)
{
    ByteCursor in(content.data(), content.size());
    // Not one band takes less than its six numbers, the count and a bucket.
    if (bands == 0 || in.u16() != bands || in.remaining() / 29 < bands)
        return nullptr;
    StatisticsPtr statistics = makeStatisticsRecord(bands);
    const std::size_t maxBuckets = std::clamp(kMaxBucketsOfAllBands / bands, std::size_t(256), kMaxBuckets);
    for (std::size_t i = 0; i < bands; ++i)
        if (!takeBandStatistics(&in, maxBuckets, &statistics->pBandStats[i]))
            return nullptr;
    return statistics;
}

static_assert(sizeof(PLKRPCData) == 92 * sizeof(double), "the record is its numbers and nothing else");

Bytes makeRpc(const PLKRPCData &rpc)
{
    std::array<double, 92> numbers{};
    std::memcpy(numbers.data(), &rpc, sizeof rpc);
    Bytes bytes;
    ByteWriter out(&bytes);
    for (const double number : numbers)
        putDouble(&out, number);
    return bytes;
}

std::optional<PLKRPCData> parseRpc(const Bytes &content)
{
    std::array<double, 92> numbers{};
    ByteCursor in(content.data(), content.size());
    for (double &number : numbers)
        number = takeDouble(&in);
    const bool isFinite = std::all_of(numbers.begin(), numbers.end(), [](double n) { return std::isfinite(n); });
    return in.ok() && isFinite ? std::optional(rpcOfNumbers(numbers)) : std::nullopt;
}

} // namespace xrv
