#include "tilemerger.h"

#include "base/bytewriter.h"

#include <algorithm>

namespace xrv {

namespace {

constexpr std::size_t kGeneralStyle = 5; ///< bytes of COD before what COC has, too (ISO/IEC 15444-1 A.6.1, A.6.2)

MarkerSegment *find(std::vector<MarkerSegment> *segments, std::uint16_t marker)
{
    const auto found = std::find_if(segments->begin(), segments->end(),
                                    [marker](const MarkerSegment &segment) { return segment.marker == marker; });
    return found == segments->end() ? nullptr : &*found;
}

/// ISO/IEC 15444-15 A.3: what either of them needs, and the larger magnitude.
void mergeCapabilities(const Bytes &other, Bytes *capabilities)
{
    constexpr std::size_t kPlace = 5; // of the low byte of Ccap15, behind Pcap
    constexpr std::uint8_t kMagnitude = 0x1F;
    if (other.size() <= kPlace || capabilities->size() <= kPlace)
        return;
    (*capabilities)[kPlace - 1] |= other[kPlace - 1];
    std::uint8_t &low = (*capabilities)[kPlace];
    const int magnitude = std::max(low & kMagnitude, other[kPlace] & kMagnitude);
    low = static_cast<std::uint8_t>(((low | other[kPlace]) & ~kMagnitude) | magnitude);
}

void mergeSegments(const std::vector<MarkerSegment> &others, std::size_t component,
                   std::vector<MarkerSegment> *segments)
{
    const auto number = static_cast<std::uint8_t>(component);
    for (const MarkerSegment &other : others) {
        if (other.marker == Marker::kCAP) {
            if (MarkerSegment *own = find(segments, Marker::kCAP))
                mergeCapabilities(other.payload, &own->payload);
        } else if (other.marker == Marker::kCOD && other.payload.size() > kGeneralStyle) {
            Bytes payload{number, static_cast<std::uint8_t>(other.payload[0] & 1)};
            payload.insert(payload.end(), other.payload.begin() + kGeneralStyle, other.payload.end());
            segments->push_back({Marker::kCOC, payload});
        } else if (other.marker == Marker::kQCD) {
            Bytes payload{number};
            payload.insert(payload.end(), other.payload.begin(), other.payload.end());
            segments->push_back({Marker::kQCC, payload});
        }
    }
}

/// Takes packets from the start of \a part one after the other.
class PacketTaker
{
public:
    explicit PacketTaker(const EncodedTile::Part &part)
        : part(part)
    {
    }
    bool isAtEnd() const { return next == part.lengths.size(); }
    void moveTo(EncodedTile::Part *target)
    {
        const auto begin = part.packets.begin() + static_cast<std::ptrdiff_t>(position);
        target->packets.insert(target->packets.end(), begin, begin + part.lengths[next]);
        target->lengths.push_back(part.lengths[next]);
        position += part.lengths[next++];
    }

private:
    const EncodedTile::Part &part;
    std::size_t next = 0, position = 0;
};

} // namespace

void addComponent(const EncodedTile &other, std::size_t components, int layers, EncodedTile *tile)
{
    const std::size_t before = components * static_cast<std::size_t>(layers);
    for (std::size_t resolution = 0; resolution < tile->parts.size(); ++resolution) {
        EncodedTile::Part merged;
        PacketTaker own(tile->parts[resolution]), added(other.parts[resolution]);
        while (!added.isAtEnd()) { // by position
            for (std::size_t i = 0; i < before && !own.isAtEnd(); ++i)
                own.moveTo(&merged);
            added.moveTo(&merged);
            // A packet of nothing is a byte of 0: B.10.3.
            merged.packets.insert(merged.packets.end(), static_cast<std::size_t>(layers) - 1, 0);
            merged.lengths.insert(merged.lengths.end(), static_cast<std::size_t>(layers) - 1, 1);
        }
        tile->parts[resolution] = std::move(merged);
    }
    mergeSegments(other.segments, components, &tile->segments);
}

} // namespace xrv
