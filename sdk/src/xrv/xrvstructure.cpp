#include "xrvstructure.h"

#include "xrvboxes.h"

#include "base/bytecursor.h"
#include "container/structurereader.h"

#include <algorithm>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::uint64_t kBoxHeader = 8;
constexpr std::uint64_t kVersionEnd = kVersionStart + kBoxHeader + 4;
constexpr std::uint64_t kMaxContents = std::uint64_t(64) * 1024;
constexpr std::uint64_t kMaxContent = 64u << 20;

CError readVersion(const Bytes &start, XrvStructure *structure)
{
    ByteCursor in(start.data(), start.size());
    in.skip(kXrvSignature.size());
    const std::uint32_t length = in.u32(), type = in.u32();
    structure->majorVersion = in.u8();
    structure->minorVersion = in.u8();
    if (!in.ok())
        return {PLK_ERR_TRUNCATED, "The XRV file ends before its version."};
    if (type != kVersionBox || length < 12 || structure->majorVersion == 0)
        return {PLK_ERR_MALFORMED, "The XRV file has no version."};
    if (structure->majorVersion > kXrvMappedVersion)
        return {PLK_ERR_UNSUPPORTED, "The XRV file is of version " + std::to_string(structure->majorVersion) + "." +
                                         std::to_string(structure->minorVersion) + "; this library reads versions " +
                                         std::to_string(kXrvPlainVersion) + ".x and " +
                                         std::to_string(kXrvMappedVersion) + ".x."};
    return {};
}

/// What will be read of a box to open the file: all of the packet index, of others the header. The small ones come with
/// it.
ByteRange neededOf(const XrvBoxPlace &place, std::uint64_t fileSize)
{
    constexpr std::uint64_t kStartOfBox = 4096, kStartOfCodestream = 16u << 10, kMaxIndex = 16u << 20;
    const std::uint64_t most = place.type == kPacketIndexBox   ? kMaxIndex
                               : place.type == boxType("jp2c") ? kStartOfCodestream
                                                               : kStartOfBox;
    if (place.range.offset >= fileSize)
        return {};
    return {place.range.offset, std::min({most, place.range.length, fileSize - place.range.offset})};
}

/// Tells a distant source at once what the walk from box to box is going to need. The walk itself believes only what it
/// finds.
CError prefetchBoxes(ByteSource &source)
{
    Bytes header, content;
    if (!source.isRemote() || source.size() < kContentsStart + kBoxHeader)
        return {};
    if (CError error = source.read({kContentsStart, kBoxHeader}, &header))
        return error;
    ByteCursor in(header.data(), header.size());
    const std::uint64_t length = in.u32(), available = source.size() - kContentsStart;
    if (in.u32() != kContentsBox || length < kBoxHeader || length > std::min(available, kMaxContents))
        return {};
    if (CError error = source.read({kContentsStart + kBoxHeader, length - kBoxHeader}, &content))
        return error;
    std::vector<ByteRange> ranges;
    for (const XrvBoxPlace &place : parseContents(content))
        ranges.push_back(neededOf(place, source.size()));
    return source.prefetch(joinedRanges(std::move(ranges), kBoxHeader), {});
}

/// Fetches and takes apart the boxes that only XRV files have.
class RecordReader
{
public:
    RecordReader(ByteSource &source, const std::vector<BoxPlace> &places, std::vector<std::string> *warnings)
        : source(source)
        , places(places)
        , warnings(warnings)
    {
    }

    CError read(XrvStructure *structure)
    {
        std::optional<XrvFileInfo> info;
        if (CError error = take(kFileInfoBox, parseFileInfo, &info))
            return error;
        if (!info)
            return {PLK_ERR_MALFORMED, find(kFileInfoBox) ? "The file information of the XRV file is damaged."
                                                          : "The XRV file has no file information."};
        structure->info = std::move(*info);
        std::optional<std::vector<XrvBand>> bands;
        if (CError error = take(kBandsBox, parseBands, &bands))
            return error;
        if (bands && bands->size() == structure->info.bands)
            structure->bands = std::move(*bands);
        else
            warn("The descriptions of the bands are missing or do not fit and are not used.");
        if (CError error = readMappings(structure))
            return error;
        if (CError error = take(kTextsBox, parseTexts, &structure->texts))
            return error;
        if (CError error = take(kRpcBox, parseRpc, &structure->rpc))
            return error;
        warnOfDamaged(kTextsBox, structure->texts.has_value(), "The authoring texts are damaged and are not used.");
        warnOfDamaged(kRpcBox, structure->rpc.has_value(), "The RPC coefficients are damaged and are not used.");
        structure->statistics = placeOf(kStatisticsBox);
        structure->packetIndex = packetIndexOf(structure->boxes);
        return {};
    }

private:
    /// Without them the codes would be taken for cells.
    CError readMappings(XrvStructure *structure)
    {
        if (!find(kCellsBox))
            return {};
        std::optional<std::vector<CellMapping>> mappings;
        if (CError error = take(kCellsBox, parseCellMappings, &mappings))
            return error;
        if (!mappings || mappings->size() != structure->info.bands || mappings->size() != structure->bands.size())
            return {PLK_ERR_MALFORMED, "What the XRV file says of its cells is damaged."};
        structure->mappings = std::move(*mappings);
        return {};
    }
    const BoxPlace *find(std::uint32_t type) const
    {
        const auto isWanted = [type](const BoxPlace &place) { return place.type == type; };
        const auto found = std::find_if(places.begin(), places.end(), isWanted);
        return found == places.end() ? nullptr : &*found;
    }
    ByteRange placeOf(std::uint32_t type) const
    {
        const BoxPlace *place = find(type);
        return place ? place->content : ByteRange();
    }
    template <typename Record>
    CError take(std::uint32_t type, std::optional<Record> (*parse)(const Bytes &), std::optional<Record> *record)
    {
        Bytes content;
        if (const BoxPlace *place = find(type)) {
            if (CError error = readXrvContent(source, place->content, &content))
                return error;
            *record = parse(content);
        }
        return {};
    }
    void warnOfDamaged(std::uint32_t type, bool isRead, const char *sentence)
    {
        if (find(type) && !isRead)
            warn(sentence);
    }
    void warn(const char *sentence)
    {
        if (warnings)
            warnings->push_back(sentence);
    }

    ByteSource &source;
    const std::vector<BoxPlace> &places;
    std::vector<std::string> *warnings;
};

bool hasSignature(const Bytes &start)
{
    return start.size() >= kXrvSignature.size() &&
           std::equal(kXrvSignature.begin(), kXrvSignature.end(), start.begin());
}

CError readStart(ByteSource &source, Bytes *start)
{
    return source.read({0, std::min<std::uint64_t>(source.size(), kVersionEnd)}, start);
}

} // namespace

ByteRange packetIndexOf(const Jp2Structure &boxes)
{
    for (const BoxPlace &place : boxes.otherBoxes)
        if (place.type == kPacketIndexBox)
            return place.content;
    return {};
}

CError isXrv(ByteSource &source, bool *result)
{
    Bytes start;
    if (CError error = readStart(source, &start))
        return error;
    *result = hasSignature(start);
    return {};
}

CError readXrvStructure(ByteSource &source, XrvStructure *structure, std::vector<std::string> *warnings)
{
    *structure = {};
    Bytes start;
    if (CError error = readStart(source, &start))
        return error;
    if (!hasSignature(start))
        return {PLK_ERR_UNKNOWN_FORMAT, "The file is not an XRV image."};
    if (CError error = readVersion(start, structure))
        return error;
    if (CError error = prefetchBoxes(source))
        return error;
    if (CError error = StructureReader(source, warnings).read(&structure->boxes))
        return error;
    return RecordReader(source, structure->boxes.otherBoxes, warnings).read(structure);
}

CError readXrvContent(ByteSource &source, ByteRange place, Bytes *content)
{
    content->clear();
    if (place.length == 0 || place.length > kMaxContent)
        return {};
    return source.read(place, content);
}

} // namespace xrv
