#include "tileindexstore.h"

#include "decode/threads/parallel.h"

#include <algorithm>
#include <utility>

using PLK::CError;

namespace xrv {

namespace {

/// Tile indexes kept per file, in bytes.
constexpr std::size_t kIndexBudget = 32u << 20;

constexpr std::uint64_t kLocalReadAhead = 1024;
// How much of a tile-part its header takes is not known before it is read; most of it are the packets' lengths.
constexpr std::uint64_t kBytesPerPacketLength = 2;
constexpr std::uint64_t kShortestHeader = 96, kMaxHeader = std::uint64_t(64) * 1024;
/// The cells of low resolutions take more bits each than those of the others: times this.
constexpr std::uint64_t kLowResolutionBits = 2;
/// Discarded resolutions from which on the rest is little enough to be read along with the header.
constexpr int kFewResolutions = 2;
constexpr std::uint64_t kMaxReadAhead = std::uint64_t(256) * 1024;

/// Read at a time where all bytes of all tiles are needed.
constexpr std::uint64_t kWholeTilesAhead = 1u << 20;
/// Bytes of tiles without packet lengths that are asked for at a time.
constexpr std::uint64_t kWalkBatch = 8u << 20;

/// The highest resolution that is needed without the \a discarded ones.
int neededResolution(const TileIndex &index, int discarded)
{
    int most = 0, fewest = 32;
    for (const ComponentStyle &component : index.style().components) {
        most = std::max(most, int(component.decompositionLevels));
        fewest = std::min(fewest, int(component.decompositionLevels));
    }
    return most - std::min(discarded, fewest);
}

/// The low resolutions' packets come first.
bool beginsWithLowResolutions(const TileStyle &style)
{
    return isByResolution(style) ||
           (style.layers == 1 && style.progression == 0 && style.progressionChanges.empty()); // LRCP
}

/// Bytes of a tile that a walk will look at, as far as that can be told.
std::vector<ByteRange> walkedRanges(const TileIndex &index, int discarded)
{
    std::vector<ByteRange> ranges = index.data();
    if (index.hasPackedHeaders() && !index.style().usesSop())
        return {};
    if (!isByResolution(index.style()))
        return ranges;
    std::uint64_t left = 0;
    for (const ByteRange &range : ranges)
        left += range.length;
    left = std::min(left, left / (std::uint64_t(1) << std::min(2 * discarded, 62)) * kLowResolutionBits);
    for (ByteRange &range : ranges) {
        range.length = std::min(range.length, left);
        left -= range.length;
    }
    return ranges;
}

} // namespace

struct TileIndexStore::Task
{
    std::uint32_t tile = 0;
    std::size_t place = 0; ///< in the answer
    std::unique_ptr<TileIndexReader> reader;
    bool isFresh = false; ///< nothing is known of the tile yet
    std::vector<TilePart> parts;
};

TileIndexStore::TileIndexStore(std::shared_ptr<ByteSource> source, ByteRange codestream, const MainHeader &header)
    : source(std::move(source))
    , codestream(codestream)
    , header(header)
    , table(this->source, codestream, header)
    , indexes(kIndexBudget)
{
    const std::uint64_t packets = PacketNumbering(header, header.style, tileRect(header, 0)).count();
    headerAhead = std::min(kShortestHeader + kBytesPerPacketLength * std::min(packets, kMaxPackets), kMaxHeader);
}

CError TileIndexStore::load(const std::vector<std::uint32_t> &tiles, int discarded, const CancelFlag &cancel,
                            std::vector<TileIndexPtr> *found)
{
    found->assign(tiles.size(), nullptr);
    std::vector<Task> tasks;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        if (i > 0 && tiles[i] == tiles[i - 1])
            continue;
        if (cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        TileIndexPtr &index = (*found)[i];
        index = indexes.find(tiles[i]);
        if (index && index->knowsPlaces(neededResolution(*index, discarded)))
            continue;
        Task task{tiles[i], i, nullptr, !index, {}};
        task.reader = index ? std::make_unique<TileIndexReader>(*source, header, *index)
                            : std::make_unique<TileIndexReader>(*source, header, tiles[i]);
        tasks.push_back(std::move(task));
    }
    if (CError error = readHeaders(tasks, discarded, cancel))
        return error;
    if (CError error = walk(tasks, discarded, cancel))
        return error;
    for (const Task &task : tasks) {
        (*found)[task.place] = task.reader->index();
        indexes.replace(task.tile, task.reader->index());
    }
    for (std::size_t i = 1; i < tiles.size(); ++i)
        if (!(*found)[i])
            (*found)[i] = (*found)[i - 1];
    return {};
}

/// Bytes from the start of a tile-part that are worth having at once: its header, and the packets of an overview.
std::uint64_t TileIndexStore::readAhead(int discarded) const
{
    if (!source->isRemote())
        return kLocalReadAhead;
    const std::uint64_t bytesOfTile = codestream.length / header.tileCount();
    std::uint64_t ahead = headerAhead;
    if (discarded >= kFewResolutions && beginsWithLowResolutions(header.style))
        ahead += bytesOfTile / (std::uint64_t(1) << std::min(2 * discarded, 62)) * kLowResolutionBits;
    return std::min(ahead, kMaxReadAhead);
}

CError TileIndexStore::readHeaders(std::vector<Task> &tasks, int discarded, const CancelFlag &cancel)
{
    std::vector<Task *> fresh;
    for (Task &task : tasks) {
        if (task.isFresh && header.packetIndex)
            task.reader->useIndex(codestream);
        else if (task.isFresh)
            fresh.push_back(&task);
    }
    if (fresh.empty())
        return {};
    std::uint64_t ahead = readAhead(discarded);
    // Where the tile-parts have to be visited one by one, the first tells whether all of their bytes will be needed.
    if (source->isRemote() && header.tlm.empty() && fresh.size() > 1) {
        if (CError error = readHeaders({fresh.front()}, ahead, cancel))
            return error;
        const TileIndex &index = *fresh.front()->reader->index();
        const bool needsAll = !index.knowsPlaces(neededResolution(index, discarded)) && !isByResolution(index.style());
        if (needsAll && fresh.size() * 2 > header.tileCount())
            ahead = kWholeTilesAhead;
        fresh.erase(fresh.begin());
    }
    return readHeaders(fresh, ahead, cancel);
}

CError TileIndexStore::readHeaders(const std::vector<Task *> &tasks, std::uint64_t ahead, const CancelFlag &cancel)
{
    if (CError error = findParts(tasks, ahead, cancel))
        return error;
    return runAll(tasks.size(), cancel, [&](std::size_t i) {
        TileIndexReader &reader = *tasks[i]->reader;
        for (const TilePart &part : tasks[i]->parts)
            if (CError error = reader.readPart(part, firstRead(*tasks[i], part, ahead), cancel))
                return error;
        reader.finishHeaders(cancel);
        return CError();
    });
}

/// And has a distant source fetch their beginnings.
CError TileIndexStore::findParts(const std::vector<Task *> &tasks, std::uint64_t ahead, const CancelFlag &cancel)
{
    for (bool holds = false; !holds;) {
        const int build = table.build();
        std::vector<ByteRange> ranges;
        for (Task *task : tasks) {
            if (CError error = table.find(task->tile, source->isRemote() ? ahead : 0, cancel, &task->parts))
                return error;
            for (const TilePart &part : task->parts)
                ranges.push_back({part.range.offset, std::min(part.range.length, firstRead(*task, part, ahead))});
        }
        ranges.push_back(table.toConfirm());
        if (CError error = source->prefetch(ranges, cancel))
            return error;
        holds = table.confirm(build, cancel);
    }
    return {};
}

/// What comes after the header is worth having in the first tile-part only.
std::uint64_t TileIndexStore::firstRead(const Task &task, const TilePart &part, std::uint64_t ahead) const
{
    if (!source->isRemote() || &part == &task.parts.front())
        return ahead;
    return std::min(ahead, headerAhead / task.parts.size() + kShortestHeader);
}

CError TileIndexStore::walk(std::vector<Task> &tasks, int discarded, const CancelFlag &cancel)
{
    std::vector<const Task *> toWalk;
    for (const Task &task : tasks)
        if (!task.reader->index()->knowsPlaces(neededResolution(*task.reader->index(), discarded)))
            toWalk.push_back(&task);
    for (std::size_t first = 0; first < toWalk.size();) {
        std::vector<std::vector<ByteRange>> atHand; // by tile
        std::vector<ByteRange> ranges;
        std::uint64_t bytes = 0;
        while (first + atHand.size() < toWalk.size() && bytes < kWalkBatch) {
            atHand.push_back(walkedRanges(*toWalk[first + atHand.size()]->reader->index(), discarded));
            for (const ByteRange &range : atHand.back()) {
                ranges.push_back(range);
                bytes += range.length;
            }
        }
        if (CError error = source->prefetch(ranges, cancel))
            return error;
        if (CError error = runAll(atHand.size(), cancel, [&](std::size_t i) {
                TileIndexReader &reader = *toWalk[first + i]->reader;
                return reader.walk(neededResolution(*reader.index(), discarded), atHand[i], cancel);
            }))
            return error;
        first += atHand.size();
    }
    return {};
}

} // namespace xrv
