#pragma once

#include "rasterread.h"

#include "decode/tile/codeblockstore.h"

#include <deque>

namespace xrv {

/// Decodes the jobs of reads by code-blocks: just those on which the wanted cells depend, which the tile cache keeps.
/// Memory stays bounded: what a read needs is decoded batch by batch.
class CodeBlockPath
{
public:
    CodeBlockPath(std::shared_ptr<ByteSource> source, const MainHeader &header, const RasterInfo &raster,
                  std::uint64_t fileNumber);

    /// Decodes the jobs of \a read, which have their indexes, but for tiles that are missing. PLK_ERR_UNSUPPORTED with
    /// the marker segment that asks for what cannot be decoded.
    PLK::CError decode(RasterRead *read);
    /// Has a distant source fetch what the first batch of all \a reads needs.
    PLK::CError prefetch(std::deque<RasterRead> *reads, const CancelFlag &cancel);

private:
    /// Jobs of one read whose code-blocks are decoded before they are put together.
    struct Batch;
    static TileToDecode tileOf(const RasterRead &read, std::size_t job);
    static int averagedLevels(const RasterRead &read, std::size_t job);
    /// \a part: of the job's levelRect.
    void add(const RasterRead &read, std::size_t job, const IntRect &part, Batch *batch) const;
    PLK::CError decodeBatch(RasterRead *read, const Batch &batch);
    void keepBlank(RasterRead *read, std::size_t job, const IntRect &part, const std::string &damage) const;

    const MainHeader &header;
    const RasterInfo &raster;
    CodeBlockStore codeBlocks;
};

} // namespace xrv
