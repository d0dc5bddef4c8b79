#include "mainheader.h"

#include "imagebudget.h"
#include "packedheaders.h"

#include "base/bytecursor.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

/// Most headers are no longer, and this much came with the first answer of a distant source; then as much at once as
/// hardly any is.
constexpr std::uint64_t kFirstRead = std::uint64_t(4) * 1024;
constexpr std::uint64_t kReadGrowth = 16;
constexpr std::size_t kMaxComments = 64; ///< that are kept
constexpr std::uint64_t kMaxMainHeader = std::uint64_t(64) * 1024 * 1024;

CError malformed(const std::string &what)
{
    return {PLK_ERR_MALFORMED, "The JPEG 2000 codestream is damaged: " + what + "."};
}

/// \a what: something of a marker segment with its value.
CError unsupported(const std::string &what)
{
    return {PLK_ERR_UNSUPPORTED, "The codestream has " + what + ", which is not supported."};
}

bool isSegmentless(std::uint16_t marker)
{
    return marker == Marker::kSOC || marker == Marker::kSOD || marker == Marker::kEOC ||
           (marker >= 0xFF30 && marker <= 0xFF3F);
}

std::string latin1ToUtf8(const std::uint8_t *text, std::size_t length)
{
    std::string result;
    for (std::size_t i = 0; i < length; ++i) {
        const std::uint8_t c = text[i];
        if (c == 0)
            break;
        if (c < 0x80) {
            result += static_cast<char>(c);
        } else {
            result += static_cast<char>(0xC0 | c >> 6);
            result += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return result;
}

std::uint32_t divideUp(std::uint64_t a, std::uint64_t b)
{
    return static_cast<std::uint32_t>((a + b - 1) / b);
}

CError readComponents(ByteCursor &in, MainHeader *header)
{
    const std::uint16_t count = in.u16();
    if (count < 1 || count > 16384)
        return malformed("it claims " + std::to_string(count) + " components");
    if (in.remaining() < std::size_t(3) * count)
        return malformed("its SIZ marker segment is too short for its components");
    header->components.resize(count);
    for (MainHeader::Component &component : header->components) {
        const std::uint8_t depth = in.u8();
        component.bits = static_cast<std::uint8_t>((depth & 0x7F) + 1);
        component.isSigned = depth & 0x80;
        component.stepX = in.u8();
        component.stepY = in.u8();
        if (component.stepX == 0 || component.stepY == 0)
            return malformed("a component has a sampling step of 0");
        if (component.bits > 38)
            return malformed("a component claims " + std::to_string(component.bits) + " bits");
    }
    return {};
}

CError readSize(const MarkerSegment &segment, MainHeader *header)
{
    ByteCursor in(segment.payload.data(), segment.payload.size());
    header->capabilities = in.u16();
    header->x1 = in.u32();
    header->y1 = in.u32();
    header->x0 = in.u32();
    header->y0 = in.u32();
    header->tileWidth = in.u32();
    header->tileHeight = in.u32();
    header->tileX0 = in.u32();
    header->tileY0 = in.u32();
    if (!in.ok())
        return malformed("its SIZ marker segment is too short");
    if (header->x1 <= header->x0 || header->y1 <= header->y0)
        return malformed("the image area is empty");
    if (header->tileWidth == 0 || header->tileHeight == 0)
        return malformed("the tile size is 0");
    if (header->tileX0 > header->x0 || header->tileY0 > header->y0 ||
        std::uint64_t(header->tileX0) + header->tileWidth <= header->x0 ||
        std::uint64_t(header->tileY0) + header->tileHeight <= header->y0)
        return malformed("the first tile lies outside the image");
    // The codec computes in signed 32-bit coordinates.
    if (header->x1 > 0x7FFFFFFFu || header->y1 > 0x7FFFFFFFu)
        return {PLK_ERR_UNSUPPORTED, "Images that reach beyond 2147483647 cells are not supported."};
    header->tilesAcross = divideUp(header->x1 - header->tileX0, header->tileWidth);
    header->tilesDown = divideUp(header->y1 - header->tileY0, header->tileHeight);
    if (std::uint64_t(header->tilesAcross) * header->tilesDown > 65535)
        return malformed("it claims " + std::to_string(std::uint64_t(header->tilesAcross) * header->tilesDown) +
                         " tiles, more than the 65535 that there can be");
    return readComponents(in, header);
}

CError readStyleParameters(ByteCursor &in, bool hasPrecincts, ComponentStyle *style)
{
    style->decompositionLevels = in.u8();
    style->codeBlockWidthExponent = (in.u8() & 15) + 2;
    style->codeBlockHeightExponent = (in.u8() & 15) + 2;
    style->codeBlockStyle = in.u8();
    const std::uint8_t transform = in.u8();
    if (!in.ok())
        return malformed("a coding style marker segment is too short");
    if (style->decompositionLevels > 32)
        return malformed("it claims " + std::to_string(style->decompositionLevels) + " decomposition levels");
    if (style->codeBlockWidthExponent > 10 || style->codeBlockHeightExponent > 10 ||
        style->codeBlockWidthExponent + style->codeBlockHeightExponent > 12)
        return malformed("its code-blocks are larger than 4096 cells");
    if (transform > 1)
        return unsupported("wavelet transformation " + std::to_string(transform) + " (SPcod of COD or COC)");
    constexpr std::uint8_t kMixedBlocks = CodeBlockStyle::kHighThroughput | CodeBlockStyle::kMixed;
    if ((style->codeBlockStyle & kMixedBlocks) == CodeBlockStyle::kMixed)
        return unsupported("code-block style " + std::to_string(style->codeBlockStyle) + " (SPcod of COD or COC)");
    style->isReversible = transform == 1;
    style->hasPrecincts = hasPrecincts;
    if (hasPrecincts) {
        for (int r = 0; r <= style->decompositionLevels; ++r) {
            style->precinctSizes[r] = in.u8();
            if (r > 0 && ((style->precinctSizes[r] & 15) == 0 || style->precinctSizes[r] >> 4 == 0))
                return malformed("a precinct has a size of 1");
        }
        if (!in.ok())
            return malformed("precinct sizes are missing");
    }
    return {};
}

std::uint16_t componentIndex(ByteCursor &in, std::size_t componentCount)
{
    return componentCount < 257 ? in.u8() : in.u16();
}

CError applyCod(const MarkerSegment &segment, TileStyle *style, const std::vector<bool> &cocSet)
{
    ByteCursor in(segment.payload.data(), segment.payload.size());
    style->scod = in.u8();
    style->progression = in.u8();
    style->layers = in.u16();
    const std::uint8_t transform = in.u8();
    style->multipleComponentTransform = transform & 1;
    ComponentStyle common;
    if (CError error = readStyleParameters(in, style->scod & 1, &common))
        return error;
    if (transform > 1)
        return unsupported("multiple component transformation " + std::to_string(transform) + " (SGcod of COD)");
    if (style->layers == 0)
        return malformed("it claims 0 quality layers");
    if (style->progression > 4)
        return malformed("its progression order is unknown");
    for (std::size_t c = 0; c < style->components.size(); ++c)
        if (!cocSet[c])
            style->components[c] = common;
    return {};
}

CError applyCoc(const MarkerSegment &segment, TileStyle *style, std::vector<bool> *cocSet)
{
    ByteCursor in(segment.payload.data(), segment.payload.size());
    const std::uint16_t c = componentIndex(in, style->components.size());
    const std::uint8_t scoc = in.u8();
    if (!in.ok() || c >= style->components.size())
        return malformed("a COC marker segment names a component that there is not");
    (*cocSet)[c] = true;
    return readStyleParameters(in, scoc & 1, &style->components[c]);
}

CError applyPoc(const MarkerSegment &segment, TileStyle *style)
{
    ByteCursor in(segment.payload.data(), segment.payload.size());
    const bool wide = style->components.size() >= 257;
    while (in.remaining() >= (wide ? 9u : 7u)) {
        ProgressionChange change;
        change.resolutionStart = in.u8();
        change.componentStart = wide ? in.u16() : in.u8();
        change.layerEnd = in.u16();
        change.resolutionEnd = in.u8();
        change.componentEnd = wide ? in.u16() : in.u8();
        // A.6.6: 0 stands for 256 where the field has one byte, and for 16384 where it has two.
        if (change.componentEnd == 0)
            change.componentEnd = wide ? 16384 : 256;
        change.order = in.u8();
        if (change.order > 4)
            return malformed("a progression order change names an unknown order");
        style->progressionChanges.push_back(change);
    }
    return {};
}

void keepComment(const MarkerSegment &segment, MainHeader *header)
{
    // Rcom 1 is text (A.9.2); 0 is binary.
    if (header->comments.size() < kMaxComments && segment.payload.size() > 2 && segment.payload[0] == 0 &&
        segment.payload[1] == 1)
        header->comments.push_back(latin1ToUtf8(segment.payload.data() + 2, segment.payload.size() - 2));
}

CError applyMainSegment(MarkerSegment &segment, MainHeader *header, std::vector<bool> *cocSet, bool *hasCod,
                        bool *hasQcd, std::vector<MarkerSegment> *ppm)
{
    switch (segment.marker) {
    case Marker::kCOD:
        *hasCod = true;
        break;
    case Marker::kQCD:
        *hasQcd = true;
        break;
    case Marker::kCOM:
        keepComment(segment, header);
        return {};
    case Marker::kTLM:
        header->tlm.push_back(std::move(segment));
        return {};
    case Marker::kPPM:
        ppm->push_back(std::move(segment));
        return {};
    case Marker::kCOC:
    case Marker::kQCC:
    case Marker::kRGN:
    case Marker::kPOC:
    case Marker::kCAP: // says nothing that the coding styles do not say of each code-block
    case Marker::kCPF:
        break;
    case Marker::kDFS:
    case Marker::kADS:
    case Marker::kMCT:
    case Marker::kMCC:
    case Marker::kNLT:
    case Marker::kMCO:
    case Marker::kCBD:
    case Marker::kATK:
        return unsupported("marker segment " + std::to_string(segment.marker) + " of ISO/IEC 15444-2");
    default:
        return {}; // PLM, CRG and what is unknown: not needed to decode
    }
    CError error = header->style.apply(segment, cocSet);
    header->segments.push_back(std::move(segment));
    return error;
}

CError parseMainHeader(std::vector<MarkerSegment> &segments, MainHeader *header)
{
    if (segments.empty() || segments.front().marker != Marker::kSIZ)
        return malformed("its SIZ marker segment is missing");
    if (CError error = readSize(segments.front(), header))
        return error;
    header->style.components.resize(header->components.size());
    std::vector<bool> cocSet(header->components.size(), false);
    bool hasCod = false, hasQcd = false;
    std::vector<MarkerSegment> ppm;
    for (std::size_t i = 1; i < segments.size(); ++i)
        if (CError error = applyMainSegment(segments[i], header, &cocSet, &hasCod, &hasQcd, &ppm))
            return error;
    if (!hasCod)
        return malformed("its COD marker segment is missing");
    if (!hasQcd)
        return malformed("its QCD marker segment is missing");
    if (!ppm.empty())
        header->packedHeaders = std::make_shared<const PackedHeaders>(std::move(ppm));
    return {};
}

} // namespace

int TileStyle::minDecompositionLevels() const
{
    int levels = 32;
    for (const ComponentStyle &component : components)
        levels = std::min(levels, component.decompositionLevels);
    return levels;
}

int TileStyle::maxDecompositionLevels() const
{
    int levels = 0;
    for (const ComponentStyle &component : components)
        levels = std::max(levels, component.decompositionLevels);
    return levels;
}

CError TileStyle::apply(const MarkerSegment &segment, std::vector<bool> *cocSet)
{
    switch (segment.marker) {
    case Marker::kCOD:
        return applyCod(segment, this, *cocSet);
    case Marker::kCOC:
        return applyCoc(segment, this, cocSet);
    case Marker::kPOC:
        return applyPoc(segment, this);
    default:
        return {};
    }
}

bool readSegments(const Bytes &bytes, std::size_t *position, std::initializer_list<std::uint16_t> endMarkers,
                  std::vector<MarkerSegment> *segments, bool *incomplete)
{
    *incomplete = false;
    for (;;) {
        ByteCursor in(bytes.data() + *position, bytes.size() - *position);
        const std::uint16_t marker = in.u16();
        *incomplete = !in.ok();
        if (*incomplete || marker < 0xFF00)
            return false;
        if (std::find(endMarkers.begin(), endMarkers.end(), marker) != endMarkers.end())
            return true;
        if (isSegmentless(marker)) {
            *position += 2;
            continue;
        }
        const std::uint16_t length = in.u16();
        *incomplete = !in.ok() || (length >= 2 && in.remaining() < length - 2u);
        if (*incomplete || length < 2)
            return false;
        segments->push_back({marker, Bytes(in.here(), in.here() + (length - 2))});
        *position += 2u + length;
    }
}

CError readMainHeader(ByteSource &source, ByteRange codestream, MainHeader *header)
{
    for (std::uint64_t want = kFirstRead;; want *= kReadGrowth) {
        const std::uint64_t have = std::min({want, codestream.length, kMaxMainHeader});
        Bytes bytes;
        if (CError error = source.read(ByteRange{codestream.offset, have}, &bytes))
            return error;
        if (bytes.size() < 4 || bytes[0] != 0xFF || bytes[1] != 0x4F)
            return malformed("it does not begin with an SOC marker");
        std::size_t position = 2;
        std::vector<MarkerSegment> segments;
        bool incomplete = false;
        if (readSegments(bytes, &position, {Marker::kSOT, Marker::kEOC}, &segments, &incomplete)) {
            header->length = position;
            if (CError error = parseMainHeader(segments, header))
                return error;
            return ImageBudget(codestream.length).admit(*header);
        }
        if (!incomplete)
            return malformed("its main header is not made of marker segments");
        if (have == codestream.length)
            return {PLK_ERR_TRUNCATED, "The JPEG 2000 codestream ends within its main header."};
        if (have == kMaxMainHeader)
            return {PLK_ERR_UNSUPPORTED, "The main header of the JPEG 2000 codestream takes more than " +
                                             std::to_string(kMaxMainHeader >> 20) + " MB, which is not supported."};
    }
}

} // namespace xrv
