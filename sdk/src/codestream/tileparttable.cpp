#include "tileparttable.h"

#include "base/bytecursor.h"
#include "base/bytewriter.h"

#include <algorithm>
#include <chrono>
#include <thread>

using PLK::CError;

namespace xrv {

namespace {

constexpr auto kLookAgain = std::chrono::milliseconds(2);

constexpr std::uint64_t kSotSegment = 12;     ///< bytes of an SOT marker segment with its marker
constexpr std::uint64_t kShortestPart = 14;   ///< SOT segment and SOD marker
constexpr std::uint32_t kMaxParts = 4u << 20; ///< no sound file comes near
constexpr std::size_t kMaxPartsOfTile = 255;  ///< TPsot counts them in a byte, and 255 is reserved (A.4.2)
/// Read at a time where tile-parts follow each other so closely.
constexpr std::uint64_t kWindow = std::uint64_t(64) * 1024, kCloseBy = 4096;

// What is remembered of a walk: for each tile-part its tile, its length and TNsot.
constexpr char kWalkedName[] = "tile-parts";
constexpr std::size_t kWalkedEntry = 2 + 4 + 1;
constexpr std::size_t kMaxWalkedBytes = 1u << 20;
constexpr std::uint32_t kWorthAsking = 8; ///< tiles: fewer are found as soon as what a publisher knows of them

struct Sot
{
    std::uint16_t marker = 0;
    std::uint16_t tile = 0;
    std::uint32_t length = 0;
    std::uint8_t partsOfTile = 0;
};

Sot parseSot(const Bytes &bytes)
{
    ByteCursor in(bytes.data(), bytes.size());
    Sot sot;
    sot.marker = in.u16();
    in.skip(2);
    sot.tile = in.u16();
    sot.length = in.u32();
    in.skip(1);
    sot.partsOfTile = in.u8();
    return sot;
}

} // namespace

TilePartTable::TilePartTable(std::shared_ptr<ByteSource> source, ByteRange codestream, const MainHeader &header)
    : source(std::move(source))
    , codestream(codestream)
    , header(header)
{
}

CError TilePartTable::find(std::uint32_t tile, std::uint64_t readAhead, const CancelFlag &cancel,
                           std::vector<TilePart> *parts)
{
    // A walk for somebody else may be on its way. Not a timed mutex: thread checkers do not see through it.
    std::unique_lock<std::mutex> lock(mutex, std::try_to_lock);
    while (!lock.owns_lock() && !lock.try_lock()) {
        if (cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        std::this_thread::sleep_for(kLookAgain);
    }
    if (!isStarted)
        start(cancel);
    const std::uint32_t partsBefore = partCount;
    CError error;
    while (error.IsSuccess() && !isSettled(tile))
        error = walkOn(readAhead, cancel);
    if (partCount > partsBefore)
        remember();
    if (error)
        return error;
    const auto found = tiles.find(tile);
    *parts = found == tiles.end() ? std::vector<TilePart>() : found->second.parts;
    return {};
}

std::string TilePartTable::damage() const
{
    std::lock_guard<std::mutex> lock(mutex);
    return damageText;
}

void TilePartTable::start(const CancelFlag &cancel)
{
    clear();
    // Of a distant source the place is looked at together with what the table is asked for.
    if (buildFromTlm() && (source->isRemote() || isLastRight(cancel))) {
        isComplete = true;
        isUnconfirmed = source->isRemote();
    } else {
        clear();
        recall();
    }
    // A check that was broken off says nothing about the table.
    isStarted = !cancel.isRaised();
}

void TilePartTable::clear()
{
    tiles.clear();
    walked.clear();
    partCount = 0;
    position = codestream.offset + header.length;
}

void TilePartTable::append(std::uint32_t tile, std::uint64_t length)
{
    TilePart part;
    part.sequence = partCount++;
    part.isTruncated = position + length > codestream.end();
    part.range = {position, std::min(length, codestream.end() - position)};
    tiles[tile].parts.push_back(part);
    lastTile = tile;
    position += length;
}

/// All tile-parts of \a tile are known. Some writers announce one too few (TNsot), so the tile-part behind the last one
/// must be known to be another tile's.
bool TilePartTable::isSettled(std::uint32_t tile) const
{
    if (isComplete)
        return true;
    const auto found = tiles.find(tile);
    if (found == tiles.end() || lastTile == tile)
        return false;
    return found->second.announced != 0 && found->second.parts.size() >= found->second.announced;
}

ByteRange TilePartTable::toConfirm() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return isUnconfirmed ? ByteRange{tiles.at(lastTile).parts.back().range.offset, kSotSegment} : ByteRange{};
}

int TilePartTable::build() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return builds;
}

bool TilePartTable::confirm(int asOf, const CancelFlag &cancel)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (isUnconfirmed && isLastRight(cancel)) {
        isUnconfirmed = false;
        remember();                                   // what was published need not be asked for again
    } else if (isUnconfirmed && !cancel.isRaised()) { // else nothing was looked at
        isUnconfirmed = isComplete = false;
        isPublishedWrong = true; // or TLM is, and then nobody published anything else
        ++builds;
        clear();
        recall();
    }
    return builds == asOf;
}

/// Writers get TLM wrong, so the place that it, or a file beside the image, gives for the last tile-part is looked at
/// before it is believed.
bool TilePartTable::isLastRight(const CancelFlag &cancel)
{
    Bytes bytes;
    if (source->read(ByteRange{tiles[lastTile].parts.back().range.offset, kSotSegment}, &bytes, cancel))
        return false;
    const Sot sot = parseSot(bytes);
    return sot.marker == Marker::kSOT && sot.tile == lastTile;
}

/// A.7.1.
bool TilePartTable::buildFromTlm()
{
    std::vector<const MarkerSegment *> segments;
    for (const MarkerSegment &segment : header.tlm)
        segments.push_back(&segment);
    std::stable_sort(segments.begin(), segments.end(), [](const MarkerSegment *a, const MarkerSegment *b) {
        return !a->payload.empty() && !b->payload.empty() && a->payload[0] < b->payload[0];
    });
    for (const MarkerSegment *segment : segments)
        if (!appendFromTlm(*segment))
            return false;
    return partCount > 0 && position <= codestream.end();
}

bool TilePartTable::appendFromTlm(const MarkerSegment &segment)
{
    ByteCursor in(segment.payload.data(), segment.payload.size());
    in.skip(1);
    const std::uint8_t form = in.u8();
    const int tileBytes = form >> 4 & 3;
    const int lengthBytes = form & 0x40 ? 4 : 2;
    if (tileBytes == 3)
        return false;
    while (in.ok() && in.remaining() >= std::size_t(tileBytes + lengthBytes)) {
        const std::uint32_t tile = tileBytes == 0 ? partCount : tileBytes == 1 ? in.u8() : in.u16();
        const std::uint64_t length = lengthBytes == 4 ? in.u32() : in.u16();
        if (length < kShortestPart || tile >= header.tileCount() || position >= codestream.end() ||
            tiles[tile].parts.size() >= kMaxPartsOfTile)
            return false;
        append(tile, length);
    }
    return true;
}

CError TilePartTable::walkOn(std::uint64_t readAhead, const CancelFlag &cancel)
{
    if (cancel.isRaised())
        return {PLK_ERR_CANCELLED, "The read was cancelled."};
    if (position + kSotSegment > codestream.end() || partCount >= kMaxParts) {
        const bool isCut = position > codestream.end();
        endWalk(partCount >= kMaxParts
                    ? "The image has more than " + std::to_string(kMaxParts) + " tile-parts; the rest is not read."
                : isCut ? "The file ends within a tile-part."
                        : "");
        return {};
    }
    Bytes bytes;
    if (CError error = readSot(readAhead, cancel, &bytes))
        return error;
    const Sot sot = parseSot(bytes);
    if (sot.marker == Marker::kEOC) {
        endWalk({});
    } else if (sot.marker != Marker::kSOT || sot.tile >= header.tileCount() ||
               (sot.length != 0 && sot.length < kShortestPart)) {
        endWalk("A tile-part is missing at byte " + std::to_string(position) + ".");
    } else if (tiles[sot.tile].parts.size() >= kMaxPartsOfTile) {
        endWalk("Tile " + std::to_string(sot.tile) + " has more than " + std::to_string(kMaxPartsOfTile) +
                " tile-parts; what follows is not read.");
    } else {
        appendWalked(sot.tile, sot.length, sot.partsOfTile);
    }
    return {};
}

/// The bytes at the position, from a distant source with \a readAhead more. Short tile-parts of a near one come many at
/// a time.
CError TilePartTable::readSot(std::uint64_t readAhead, const CancelFlag &cancel, Bytes *bytes)
{
    if (position >= windowStart && position + kSotSegment <= windowStart + window.size()) {
        const auto first = window.begin() + static_cast<std::ptrdiff_t>(position - windowStart);
        bytes->assign(first, first + kSotSegment);
        return {};
    }
    const bool isNear = !source->isRemote() && partCount > 0 && tiles[lastTile].parts.back().range.length < kCloseBy;
    const bool isAtHand = position + kSotSegment <= readEnd;
    const std::uint64_t wanted = isNear ? kWindow : isAtHand ? kSotSegment : std::max(readAhead, kSotSegment);
    const std::uint64_t length = std::min(wanted, codestream.end() - position);
    readEnd = std::max(readEnd, position + length);
    if (CError error = source->read(ByteRange{position, length}, bytes, cancel))
        return error;
    if (isNear) {
        window = *bytes;
        windowStart = position;
    }
    return {};
}

void TilePartTable::appendWalked(std::uint16_t tile, std::uint32_t length, std::uint8_t partsOfTile)
{
    ByteWriter out(&walked);
    out.u16(tile);
    out.u32(length);
    out.u8(partsOfTile);
    // A.4.2: a length of 0 reaches to the end of the codestream.
    append(tile, length != 0 ? length : codestream.end() - position);
    if (partsOfTile != 0)
        tiles[tile].announced = partsOfTile;
}

void TilePartTable::endWalk(std::string damage)
{
    isComplete = true;
    damageText = std::move(damage);
}

/// Takes up a walk where an earlier visit left it, or whole from the image's publisher.
void TilePartTable::recall()
{
    Bytes known;
    if (source->recall(kWalkedName, &known)) {
        takeUp(known);
        return;
    }
    if (header.tileCount() < kWorthAsking || isPublishedWrong || !source->recallPublished(kWalkedName, &known))
        return;
    if (takeUp(known) && partCount > 0) {
        isUnconfirmed = source->isRemote();
    } else {
        isPublishedWrong = true;
        clear();
    }
}

/// What is not sound ends it: the walk goes on from the file.
bool TilePartTable::takeUp(const Bytes &known)
{
    ByteCursor in(known.data(), std::min(known.size(), kMaxWalkedBytes));
    while (in.remaining() >= kWalkedEntry && position + kShortestPart <= codestream.end()) {
        const std::uint16_t tile = in.u16();
        const std::uint32_t length = in.u32();
        const std::uint8_t partsOfTile = in.u8();
        if (tile >= header.tileCount() || (length != 0 && length < kShortestPart))
            return false;
        appendWalked(tile, length, partsOfTile);
    }
    return true;
}

void TilePartTable::remember() const
{
    if (!walked.empty() && walked.size() <= kMaxWalkedBytes)
        source->remember(kWalkedName, walked);
}

} // namespace xrv
