#pragma once

#include "bytesathand.h"
#include "codeblockset.h"

#include "decode/cache/bytebudgetmap.h"

#include <memory>
#include <vector>

namespace xrv {

/// Parsed packet headers of one precinct, with the bytes' places in the file.
struct PrecinctIndex
{
    std::vector<BandState> bands;
    const CodeBlockState &codeBlock(const CodeBlockName &name) const
    {
        return bands[static_cast<std::size_t>(name.band)].codeBlock(name.codeBlock);
    }
    std::size_t memoryUse() const;
};

/// Names a precinct of a codestream and how many of its layers are looked at.
struct PrecinctKey
{
    std::uint32_t tile = 0;
    int component = 0, resolution = 0, layers = 0;
    std::int64_t precinct = 0;
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

/// A precinct of which code-blocks are wanted, and what has been read of it.
struct WantedPrecinct
{
    PrecinctKey key;
    const CodeBlockRequest *request = nullptr;
    std::size_t requestNumber = 0;
    std::vector<const CodeBlockPlace *> codeBlocks; ///< of the request
    std::shared_ptr<const PrecinctIndex> index;     ///< null until PrecinctStore gives it
    BytesAtHand bytes;                              ///< that were read for the index
    bool isDamaged = false;
};

/// Gives the indexes of precincts, those of earlier questions from memory. Any thread.
class PrecinctStore
{
public:
    PrecinctStore(std::shared_ptr<ByteSource> source, const MainHeader &header);

    /// Gives \a precinct its index where it is in memory.
    void find(WantedPrecinct *precinct) { precinct->index = precincts.find(precinct->key); }
    /// What load() will read at first.
    std::vector<ByteRange> firstRanges(const WantedPrecinct &precinct) const;
    /// Gives \a precinct its index, if it has none. Damaged packet headers set isDamaged; the index then has what the
    /// layers before them tell. PLK_ERR_CANCELLED and the errors of the source.
    PLK::CError load(WantedPrecinct *precinct, const CancelFlag &cancel);

private:
    std::uint64_t firstRead(const WantedPrecinct &precinct) const;
    static std::pair<const std::uint8_t *, std::size_t> headerOf(const WantedPrecinct &wanted,
                                                                 const ByteRange &beginning, int layer);
    Precinct::Outcome parse(const WantedPrecinct &wanted, const std::vector<ByteRange> &beginnings,
                            const CancelFlag &cancel, PrecinctIndex *index) const;

    std::shared_ptr<ByteSource> source;
    const MainHeader &header;
    ByteBudgetMap<PrecinctKey, PrecinctIndex, PrecinctKeyHash> precincts;
};

} // namespace xrv
