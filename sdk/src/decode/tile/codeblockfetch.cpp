#include "codeblockfetch.h"

#include "decode/threads/parallel.h"

#include <algorithm>

using PLK::CError;

namespace xrv {

namespace {

/// Code-blocks that one thread decodes in a row.
constexpr std::size_t kCodeBlocksPerGroup = 4;

} // namespace

CodeBlockFetch::CodeBlockFetch(const Means &means, const std::vector<CodeBlockRequest> &requests,
                               const CancelFlag &cancel)
    : means(means)
    , cancel(cancel)
    , sets(requests.size())
{
    for (std::size_t i = 0; i < requests.size(); ++i)
        plan(i, requests[i]);
}

TileCache::Key CodeBlockFetch::cacheKey(const TileToDecode &tile, const CodeBlockName &name) const
{
    TileCache::Key key;
    key.file = means.fileNumber;
    key.tile = tile.tile;
    key.layers = static_cast<std::uint16_t>(tile.layers);
    key.component = static_cast<std::uint16_t>(name.component);
    key.codeBlock = name.number();
    return key;
}

/// Puts what the tile cache has into the request's set, and the rest under its precincts.
void CodeBlockFetch::plan(std::size_t requestNumber, const CodeBlockRequest &request)
{
    std::unordered_map<PrecinctKey, std::size_t, PrecinctKeyHash> known;
    for (const CodeBlockPlace &place : request.codeBlocks) {
        if (cancel.isRaised())
            return; // as run() will find
        const CodeBlockName &name = place.name;
        std::vector<TileCache::PlanePtr> cached = TileCache::instance().find(cacheKey(request.tile, name));
        if (!cached.empty()) {
            sets[requestNumber].insert(name.component, name.number(), std::move(cached.front()));
            continue;
        }
        const PrecinctKey key{request.tile.tile, name.component, name.resolution, request.tile.layers, name.precinct};
        const auto [found, isNew] = known.emplace(key, precincts.size());
        if (isNew) {
            WantedPrecinct precinct;
            precinct.key = key;
            precinct.request = &request;
            precinct.requestNumber = requestNumber;
            precincts.push_back(std::move(precinct));
        }
        precincts[found->second].codeBlocks.push_back(&place);
    }
}

CError CodeBlockFetch::prefetchPackets()
{
    std::vector<ByteRange> ranges;
    for (WantedPrecinct &precinct : precincts) {
        means.precincts.find(&precinct);
        if (cancel.isRaised())
            return {PLK_ERR_CANCELLED, "The read was cancelled."};
        if (precinct.index || !means.source.isRemote())
            continue;
        const std::vector<ByteRange> first = means.precincts.firstRanges(precinct);
        ranges.insert(ranges.end(), first.begin(), first.end());
    }
    return means.source.prefetch(ranges, cancel);
}

CError CodeBlockFetch::run(const DamagePolicy &damagePolicy, std::string *damageText)
{
    policy = damagePolicy;
    damage = damageText;
    if (CError error = prefetchPackets())
        return error;
    if (CError error = loadPrecincts())
        return error;
    if (CError error = prefetchCodeBlocks())
        return error;
    return decodeAll();
}

CError CodeBlockFetch::loadPrecincts()
{
    if (cancel.isRaised())
        return {PLK_ERR_CANCELLED, "The read was cancelled."};
    return runAll(precincts.size(), cancel, [&](std::size_t i) {
        CError error = means.precincts.load(&precincts[i], cancel);
        return error.IsSuccess() && precincts[i].isDamaged ? noteDamage(precincts[i]) : error;
    });
}

/// Has a distant source fetch the bytes of the code-blocks that came with no packet.
CError CodeBlockFetch::prefetchCodeBlocks()
{
    if (!means.source.isRemote())
        return {};
    std::vector<ByteRange> ranges;
    for (const WantedPrecinct &precinct : precincts)
        for (const CodeBlockPlace *place : precinct.codeBlocks) {
            const CodeBlockName &name = place->name;
            for (const ByteRange &range : means.reader.rangesOf(precinct.index->codeBlock(name)))
                if (!precinct.bytes.find(range.offset, range.length))
                    ranges.push_back(range);
        }
    return means.source.prefetch(ranges, cancel);
}

CError CodeBlockFetch::decodeAll()
{
    std::vector<Group> groups;
    for (const WantedPrecinct &precinct : precincts)
        for (std::size_t begin = 0; begin < precinct.codeBlocks.size(); begin += kCodeBlocksPerGroup)
            groups.push_back({&precinct, begin, std::min(begin + kCodeBlocksPerGroup, precinct.codeBlocks.size())});
    return runAll(groups.size(), cancel, [&](std::size_t i) { return decode(groups[i]); });
}

CError CodeBlockFetch::decode(const Group &group)
{
    const WantedPrecinct &precinct = *group.precinct;
    for (std::size_t i = group.begin; i < group.end; ++i) {
        const CodeBlockPlace &place = *precinct.codeBlocks[i];
        if (precinct.index->codeBlock(place.name).pieces.empty())
            continue;
        TileCache::PlanePtr plane;
        bool isSound = true;
        CError error = means.reader.read(precinct, place, cancel, &plane, &isSound);
        if (error.IsSuccess() && !isSound)
            error = noteDamage(precinct);
        if (error)
            return error;
        if (precinct.request->isKept)
            TileCache::instance().insert(cacheKey(precinct.request->tile, place.name), plane);
        std::lock_guard<std::mutex> lock(mutex);
        sets[precinct.requestNumber].insert(place.name.component, place.name.number(), std::move(plane));
    }
    return {};
}

CError CodeBlockFetch::noteDamage(const WantedPrecinct &precinct)
{
    std::lock_guard<std::mutex> lock(mutex);
    return policy.settle({PLK_ERR_DECODE, "Part of tile " + std::to_string(precinct.key.tile) + " is damaged."},
                         damage);
}

} // namespace xrv
