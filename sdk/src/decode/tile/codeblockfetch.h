#pragma once

#include "codeblockreader.h"
#include "damagepolicy.h"

#include <mutex>
#include <string>
#include <vector>

namespace xrv {

/// One fetch of code-blocks on its way: finds out which are missing in the tile cache, reads the packets of their
/// precincts for all of them together, then decodes them on all cores.
class CodeBlockFetch
{
public:
    /// What it works with; all of it outlives the fetch.
    struct Means
    {
        ByteSource &source;
        PrecinctStore &precincts;
        const CodeBlockReader &reader;
        std::uint64_t fileNumber;
    };
    CodeBlockFetch(const Means &means, const std::vector<CodeBlockRequest> &requests, const CancelFlag &cancel);

    /// Has a distant source fetch the packets of precincts that are not parsed yet.
    PLK::CError prefetchPackets();
    /// Decodes what is missing; see CodeBlockStore::fetch().
    PLK::CError run(const DamagePolicy &policy, std::string *damage);
    /// One set for each request.
    std::vector<CodeBlockSet> takeSets() { return std::move(sets); }

private:
    /// Code-blocks of one precinct that one thread decodes in a row.
    struct Group
    {
        const WantedPrecinct *precinct;
        std::size_t begin, end;
    };

    TileCache::Key cacheKey(const TileToDecode &tile, const CodeBlockName &name) const;
    void plan(std::size_t requestNumber, const CodeBlockRequest &request);
    PLK::CError loadPrecincts();
    PLK::CError prefetchCodeBlocks();
    PLK::CError decodeAll();
    PLK::CError decode(const Group &group);
    PLK::CError noteDamage(const WantedPrecinct &precinct);

    const Means means;
    const CancelFlag &cancel;
    std::vector<WantedPrecinct> precincts;
    DamagePolicy policy{false};
    std::mutex mutex; ///< guards what follows
    std::vector<CodeBlockSet> sets;
    std::string *damage = nullptr;
};

} // namespace xrv
