#pragma once

#include "codestream/tileindex.h"
#include "decode/cache/bytebudgetmap.h"
#include "decode/cache/tilecache.h"
#include "decode/transform/tilebands.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace xrv {

/// Parsed packet headers of one precinct, with the bytes' places in the file.
struct PrecinctIndex
{
    std::vector<std::vector<BlockState>> blocks; ///< per band
    std::size_t memoryUse() const;
};

/// A tile, its index and which of its layers are wanted.
struct TileToDecode
{
    std::uint32_t tile = 0;
    std::shared_ptr<const TileIndex> index;
    int layers = 0; ///< 1 and up
};

/// Code-blocks of one tile to be decoded.
struct BlockRequest
{
    TileToDecode tile;
    std::vector<BlockPlace> blocks;
};

/// Coefficients of code-blocks as planes in subband coordinates, doubled as BlockDecoder gives them, by component and
/// BlockName::number().
class BlockSet
{
public:
    void insert(int component, std::uint64_t number, TileCache::PlanePtr plane)
    {
        planes[component][number] = std::move(plane);
    }
    /// Null when it is not there.
    const Plane *find(int component, std::uint64_t number) const
    {
        const auto ofComponent = planes.find(component);
        if (ofComponent == planes.end())
            return nullptr;
        const auto found = ofComponent->second.find(number);
        return found == ofComponent->second.end() ? nullptr : found->second.get();
    }

private:
    std::unordered_map<int, std::unordered_map<std::uint64_t, TileCache::PlanePtr>> planes;
};

/// Gives decoded code-blocks: from the tile cache, or from the file by way of packet headers and block decoder, on all
/// cores.
class BlockStore
{
public:
    BlockStore(std::shared_ptr<ByteSource> source, const MainHeader &header, std::uint64_t fileNumber);

    /// One set for each request. Damaged blocks are left out when \a resilient, with a sentence in \a damage; otherwise
    /// they are PLK_ERR_DECODE. PLK_ERR_CANCELLED.
    PLK::CError fetch(const std::vector<BlockRequest> &requests, bool resilient, const CancelFlag &cancel,
                      std::vector<BlockSet> *sets, std::string *damage);
    /// Has a distant source fetch the packets that \a requests need.
    PLK::CError prefetch(const std::vector<BlockRequest> &requests, const CancelFlag &cancel);

private:
    struct PrecinctKey
    {
        std::uint32_t tile;
        int component, resolution, layers;
        std::int64_t precinct;
        bool operator==(const PrecinctKey &k) const
        {
            return tile == k.tile && component == k.component && resolution == k.resolution && layers == k.layers &&
                   precinct == k.precinct;
        }
    };
    struct PrecinctKeyHash
    {
        std::size_t operator()(const PrecinctKey &k) const
        {
            return std::hash<std::uint64_t>()((std::uint64_t(k.tile) << 32) ^ std::uint64_t(k.precinct) ^
                                              std::uint64_t(k.component) << 48 ^ std::uint64_t(k.resolution) << 24 ^
                                              std::uint64_t(k.layers) << 40);
        }
    };
    /// A precinct with the blocks wanted of it.
    struct PrecinctTask;

    TileCache::Key cacheKey(const TileToDecode &tile, const BlockName &name) const;
    std::vector<PrecinctTask> collectMissing(const std::vector<BlockRequest> &requests,
                                             std::vector<BlockSet> *sets) const;
    std::vector<ByteRange> packetsOf(const PrecinctTask &task) const;
    std::vector<ByteRange> piecesOf(const BlockState &state) const;
    std::uint64_t firstRead(const PrecinctTask &task) const;
    PLK::CError prefetchPackets(std::vector<PrecinctTask> &tasks, const CancelFlag &cancel);
    PLK::CError prefetchPieces(const std::vector<PrecinctTask> &tasks, const CancelFlag &cancel);
    PLK::CError loadPrecinct(PrecinctTask &task, const CancelFlag &cancel);
    PLK::CError parsePrecinct(PrecinctTask &task, const std::vector<ByteRange> &packets, const CancelFlag &cancel,
                              std::shared_ptr<PrecinctIndex> *index);
    PLK::CError decodeBlock(const PrecinctTask &task, const BlockPlace &place, const CancelFlag &cancel,
                            TileCache::PlanePtr *plane, bool *isSound);
    PLK::CError readPieces(const PrecinctTask &task, const BlockState &state, const CancelFlag &cancel,
                           std::vector<std::uint8_t> *data, std::vector<std::uint32_t> *lengths);
    int magnitudeBits(const TileToDecode &tile, const BlockPlace &place) const;

    std::shared_ptr<ByteSource> source;
    const MainHeader &header;
    const std::uint64_t fileNumber;
    ByteBudgetMap<PrecinctKey, PrecinctIndex, PrecinctKeyHash> precincts;
};

} // namespace xrv
