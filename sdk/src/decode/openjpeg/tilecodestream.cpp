#include "tilecodestream.h"

#include "base/bytewriter.h"

#include <algorithm>
#include <cstring>

using PLK::CError;

namespace xrv {

namespace {

/// Cells around a region that the synthesis filters reach into at every resolution: up to 4 for the 9-7 filter
/// (ISO/IEC 15444-1 F.3), doubled because a subband cell stands for two, and a little room.
constexpr std::int64_t kFilterReach = 10;
/// Packets closer than this in the file are read in one go.
constexpr std::uint64_t kJoinGap = 4096;
/// Longest tile data that is handed over whole.
constexpr std::uint64_t kMaxTile = 0xFFFFFF00u;

class Builder
{
public:
    Builder(ByteSource &source, const MainHeader &header, const TileIndex &index, const TileSelection &selection,
            const CancelFlag &cancel, TileCodestream *result)
        : source(source)
        , header(header)
        , index(index)
        , selection(selection)
        , cancel(cancel)
        , result(result)
        , out(&result->bytes)
    {
        layers = selection.layers > 0 ? std::min<int>(selection.layers, index.style().layers) : index.style().layers;
    }

    /// The tile as it stands, with the main header's segments that the decoder needs. What is said relative to the
    /// whole codestream has to be said anew: packed headers of the main header (PPM, A.7.4) count its tile-parts, so
    /// they become those of the tile (PPT, A.7.5).
    CError buildWhole()
    {
        result->levelsToDiscard = selection.discardedLevels;
        result->layersToDecode = selection.layers;
        result->hasAllComponents = true;
        std::vector<int> all(header.components.size());
        for (std::size_t c = 0; c < all.size(); ++c)
            all[c] = static_cast<int>(c);
        writeSize(index.rect(), all);
        // A.6.6: progression changes of the tile take the place of those of the main header.
        for (const MarkerSegment &segment : header.segments)
            if (segment.marker != Marker::kPOC || !tileHasPoc())
                writeSegment(segment.marker, segment.payload);
        const std::size_t sot = beginTilePart();
        for (const MarkerSegment &segment : index.segments())
            if (segment.marker != Marker::kPOC)
                writeSegment(segment.marker, segment.payload);
        writeMergedPoc();
        writePackedHeaders();
        out.u16(Marker::kSOD);
        if (CError error = appendTileData())
            return error;
        endTilePart(sot);
        return {};
    }

    /// Packets may be left out one precinct at a time: nothing in a packet header hangs on other precincts (B.10). Of
    /// one precinct all lower layers have to be there, since each packet goes on from the ones before it.
    CError buildSelected()
    {
        const int discarded = selection.discardedLevels;
        writeSize(levelRect(index.rect(), discarded), selection.components);
        for (const MarkerSegment &segment : header.segments)
            if (segment.marker == Marker::kCAP || segment.marker == Marker::kCPF)
                writeSegment(segment.marker, segment.payload);
        writeStyles();
        writeQuantization();
        const std::size_t sot = beginTilePart();
        out.u16(Marker::kSOD);
        if (CError error = appendPackets())
            return error;
        endTilePart(sot);
        return {};
    }

private:
    bool tileHasPoc() const
    {
        return std::any_of(index.segments().begin(), index.segments().end(),
                           [](const MarkerSegment &segment) { return segment.marker == Marker::kPOC; });
    }

    void writeSegment(std::uint16_t marker, const Bytes &payload)
    {
        out.u16(marker);
        out.u16(static_cast<std::uint32_t>(payload.size() + 2));
        out.append(payload);
    }

    /// The canvas holds the one tile only, at its own place, so that nothing in it moves against the grids of precincts
    /// and code-blocks and against the even and odd cells of the transformation. Resolutions that are left out make the
    /// canvas smaller (B-14): all lower ones stay where they were.
    void writeSize(const IntRect &canvas, const std::vector<int> &components)
    {
        out.u16(Marker::kSOC);
        out.u16(Marker::kSIZ);
        out.u16(static_cast<std::uint32_t>(38 + 3 * components.size()));
        // A profile (Rsiz, A.5.1) may promise what does not hold for the part; high throughput has to be announced.
        out.u16(header.isHighThroughput ? header.capabilities : 0);
        out.u32(static_cast<std::uint32_t>(canvas.x1));
        out.u32(static_cast<std::uint32_t>(canvas.y1));
        out.u32(static_cast<std::uint32_t>(canvas.x0));
        out.u32(static_cast<std::uint32_t>(canvas.y0));
        out.u32(static_cast<std::uint32_t>(canvas.width()));
        out.u32(static_cast<std::uint32_t>(canvas.height()));
        out.u32(static_cast<std::uint32_t>(canvas.x0));
        out.u32(static_cast<std::uint32_t>(canvas.y0));
        out.u16(static_cast<std::uint32_t>(components.size()));
        for (const int c : components) {
            const MainHeader::Component &component = header.components[c];
            out.u8((component.bits - 1u) | (component.isSigned ? 0x80u : 0u));
            out.u8(component.stepX);
            out.u8(component.stepY);
        }
    }

    void appendStyleParameters(const ComponentStyle &style, Bytes *payload) const
    {
        const int levels = style.decompositionLevels - selection.discardedLevels;
        ByteWriter writer(payload);
        writer.u8(levels);
        writer.u8(style.codeBlockWidthExponent - 2);
        writer.u8(style.codeBlockHeightExponent - 2);
        writer.u8(style.codeBlockStyle);
        writer.u8(style.isReversible ? 1 : 0);
        if (style.hasPrecincts)
            for (int r = 0; r <= levels; ++r)
                writer.u8(style.precinctSizes[r]);
    }

    void writeComponentNumber(Bytes *payload, std::size_t number) const
    {
        ByteWriter writer(payload);
        if (selection.components.size() < 257)
            writer.u8(static_cast<std::uint32_t>(number));
        else
            writer.u16(static_cast<std::uint32_t>(number));
    }

    /// One COD segment in resolution order with neither progression changes nor SOP markers, and COC segments for
    /// components whose style differs from that of the first.
    void writeStyles()
    {
        const TileStyle &style = index.style();
        const ComponentStyle &first = style.components[selection.components.front()];
        Bytes payload;
        ByteWriter writer(&payload);
        writer.u8((style.usesEph() ? 4u : 0u) | (first.hasPrecincts ? 1u : 0u));
        writer.u8(1); // RLCP
        writer.u16(layers);
        writer.u8(usesComponentTransform() ? 1 : 0);
        appendStyleParameters(first, &payload);
        writeSegment(Marker::kCOD, payload);
        Bytes common;
        appendStyleParameters(first, &common);
        for (std::size_t i = 1; i < selection.components.size(); ++i) {
            const ComponentStyle &own = style.components[selection.components[i]];
            Bytes parameters;
            appendStyleParameters(own, &parameters);
            if (parameters == common)
                continue;
            Bytes coc;
            writeComponentNumber(&coc, i);
            coc.push_back(own.hasPrecincts ? 1 : 0);
            coc.insert(coc.end(), parameters.begin(), parameters.end());
            writeSegment(Marker::kCOC, coc);
        }
    }

    /// The transformation works on the first three components, which are then selected together.
    bool usesComponentTransform() const
    {
        const std::vector<int> &c = selection.components;
        return index.style().multipleComponentTransform && c.size() >= 3 && c[0] == 0 && c[1] == 1 && c[2] == 2;
    }

    /// The parameters begin with those of the lowest resolution (A.6.4), so those of left-out ones are too many at the
    /// end, which does no harm. Derived exponents hang on how far a subband lies above the lowest one (E-5), which
    /// stays.
    void writeQuantization()
    {
        const auto &all = index.quantization();
        const Bytes &common = all[selection.components.front()].parameters;
        writeSegment(Marker::kQCD, common);
        for (std::size_t i = 0; i < selection.components.size(); ++i) {
            const TileIndex::Quantization &own = all[selection.components[i]];
            if (own.parameters != common) {
                Bytes payload;
                writeComponentNumber(&payload, i);
                payload.insert(payload.end(), own.parameters.begin(), own.parameters.end());
                writeSegment(Marker::kQCC, payload);
            }
            if (!own.regionOfInterest.empty()) {
                Bytes payload;
                writeComponentNumber(&payload, i);
                payload.insert(payload.end(), own.regionOfInterest.begin(), own.regionOfInterest.end());
                writeSegment(Marker::kRGN, payload);
            }
        }
    }

    /// Tile 0, the only tile-part; its length (Psot, A.4.2) is filled in at its end.
    std::size_t beginTilePart()
    {
        const std::size_t sot = out.position();
        out.u16(Marker::kSOT);
        out.u16(10);
        out.u16(0);
        out.u32(0);
        out.u8(0);
        out.u8(1);
        return sot;
    }

    void endTilePart(std::size_t sot)
    {
        out.patchU32(sot + 6, static_cast<std::uint32_t>(out.position() - sot));
        out.u16(Marker::kEOC);
    }

    /// The progression changes of all tile-parts in one segment, as there is one tile-part now.
    void writeMergedPoc()
    {
        Bytes merged;
        for (const MarkerSegment &segment : index.segments())
            if (segment.marker == Marker::kPOC)
                merged.insert(merged.end(), segment.payload.begin(), segment.payload.end());
        if (!merged.empty() && merged.size() <= 0xFFFD)
            writeSegment(Marker::kPOC, merged);
    }

    /// In as many segments as they need, numbered by Zppt (A.7.5); one even where they are empty, which says that there
    /// are no headers among the data.
    void writePackedHeaders()
    {
        if (!index.hasPackedHeaders())
            return;
        constexpr std::size_t kMaxContent = 0xFFFF - 3;
        const Bytes &packed = index.packedHeaders();
        std::size_t position = 0;
        for (std::uint32_t z = 0; z < 256 && (position < packed.size() || z == 0); ++z) {
            const std::size_t length = std::min(kMaxContent, packed.size() - position);
            out.u16(Marker::kPPT);
            out.u16(static_cast<std::uint32_t>(length + 3));
            out.u8(z);
            out.append(packed.data() + position, length);
            position += length;
        }
    }

    CError appendTileData()
    {
        std::uint64_t sum = 0;
        for (const ByteRange &range : index.data())
            sum += range.length;
        if (sum > kMaxTile)
            return {PLK_ERR_UNSUPPORTED, "A tile of more than 4 GB without packet lengths is not supported."};
        std::vector<Bytes> data;
        if (CError error = source.read(index.data(), cancel, &data))
            return error;
        for (const Bytes &bytes : data)
            out.append(bytes);
        return {};
    }

    /// Cells of \a resolution (of those kept, 0 the lowest) that the region depends on, in one component. Every level
    /// of synthesis reaches a little further out, so the margin is added on the way down, before each halving.
    IntRect neededAt(int component, int resolution) const
    {
        const ComponentStyle &style = index.style().components[component];
        IntRect rect = componentRect(selection.region, header.components[component]);
        for (int r = style.decompositionLevels - selection.discardedLevels;; --r) {
            rect = {rect.x0 - kFilterReach, rect.y0 - kFilterReach, rect.x1 + kFilterReach, rect.y1 + kFilterReach};
            if (r == resolution)
                return rect;
            rect = {rect.x0 >> 1, rect.y0 >> 1, ceilShift(rect.x1, 1), ceilShift(rect.y1, 1)};
        }
    }

    /// Numbers of the wanted packets in the order in which they will stand, RLCP (B.12.1.2) as the COD segment says;
    /// kEmpty for unwanted ones.
    std::vector<std::uint32_t> selectPackets() const
    {
        const PacketNumbering &numbering = index.packets();
        std::vector<std::uint32_t> packets;
        int resolutions = 0;
        for (const int c : selection.components)
            resolutions = std::max(resolutions, numbering.resolutions(c) - selection.discardedLevels);
        for (int r = 0; r < resolutions; ++r) {
            const std::vector<std::vector<bool>> wanted = wantedPrecincts(r);
            for (int l = 0; l < layers; ++l)
                for (std::size_t i = 0; i < selection.components.size(); ++i)
                    for (std::size_t p = 0; p < wanted[i].size(); ++p)
                        packets.push_back(wanted[i][p] ? numbering.number(selection.components[i], r, p, l) : kEmpty);
        }
        return packets;
    }

    /// For each selected component, which precincts of a resolution are wanted.
    std::vector<std::vector<bool>> wantedPrecincts(int resolution) const
    {
        const PacketNumbering &numbering = index.packets();
        std::vector<std::vector<bool>> wanted(selection.components.size());
        for (std::size_t i = 0; i < selection.components.size(); ++i) {
            const int c = selection.components[i];
            if (resolution >= numbering.resolutions(c) - selection.discardedLevels)
                continue;
            const PrecinctGrid &grid = numbering.grid(c, resolution);
            const IntRect need = neededAt(c, resolution);
            for (std::int64_t p = 0; p < grid.count(); ++p) {
                const std::int64_t x = grid.firstX + p % grid.across, y = grid.firstY + p / grid.across;
                const IntRect precinct{x << grid.widthExponent, y << grid.heightExponent, (x + 1) << grid.widthExponent,
                                       (y + 1) << grid.heightExponent};
                wanted[i].push_back(!precinct.intersected(need).isEmpty());
            }
        }
        return wanted;
    }

    /// Places of the wanted packets in file order, joined where they are near each other.
    std::vector<ByteRange> rangesToRead(const std::vector<std::uint32_t> &packets) const
    {
        std::vector<ByteRange> ranges;
        for (const std::uint32_t packet : packets)
            if (packet != kEmpty && index.place(packet).length > 0)
                ranges.push_back({index.place(packet).offset, index.place(packet).length});
        return joinedRanges(std::move(ranges), kJoinGap);
    }

    CError appendPackets()
    {
        const std::vector<std::uint32_t> packets = selectPackets();
        const std::vector<ByteRange> ranges = rangesToRead(packets);
        std::uint64_t sum = 0;
        for (const ByteRange &range : ranges)
            sum += range.length;
        if (sum > kMaxTile)
            return {PLK_ERR_UNSUPPORTED, "More than 4 GB of one tile at once are not supported."};
        std::vector<Bytes> data;
        if (CError error = source.read(ranges, cancel, &data))
            return error;
        for (const std::uint32_t packet : packets)
            appendPacket(packet, ranges, data);
        return {};
    }

    void appendPacket(std::uint32_t packet, const std::vector<ByteRange> &ranges, const std::vector<Bytes> &data)
    {
        const PacketPlace place = packet == kEmpty ? PacketPlace() : index.place(packet);
        if (place.length == 0) {
            out.u8(0); // B.10.3: a zero bit is an empty packet
            if (index.style().usesEph())
                out.u16(Marker::kEPH);
            return;
        }
        auto range = std::upper_bound(ranges.begin(), ranges.end(), place.offset,
                                      [](std::uint64_t offset, const ByteRange &r) { return offset < r.offset; });
        --range;
        const std::uint8_t *bytes = data[range - ranges.begin()].data() + (place.offset - range->offset);
        // The SOP marker segment of 6 bytes (A.8.1) is left out, since the packets are numbered otherwise now.
        const bool hasSop = place.length >= 6 && bytes[0] == 0xFF && bytes[1] == 0x91;
        out.append(bytes + (hasSop ? 6 : 0), place.length - (hasSop ? 6 : 0));
    }

    static constexpr std::uint32_t kEmpty = 0xFFFFFFFF;

    ByteSource &source;
    const MainHeader &header;
    const TileIndex &index;
    const TileSelection &selection;
    const CancelFlag &cancel;
    TileCodestream *result;
    ByteWriter out;
    int layers;
};

} // namespace

CError makeTileCodestream(ByteSource &source, const MainHeader &header, const TileIndex &index,
                          const TileSelection &selection, const CancelFlag &cancel, TileCodestream *codestream)
{
    Builder builder(source, header, index, selection, cancel, codestream);
    return index.hasPacketPlaces() ? builder.buildSelected() : builder.buildWhole();
}

} // namespace xrv
