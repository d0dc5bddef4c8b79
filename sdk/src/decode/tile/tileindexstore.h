#pragma once

#include "codestream/tileindex.h"
#include "codestream/tileindexreader.h"
#include "codestream/tileparttable.h"
#include "decode/cache/bytebudgetmap.h"

#include <memory>
#include <vector>

namespace xrv {

/// Gives the indexes of tiles, those of earlier questions from memory. Asks a distant source for what many tiles need
/// in few requests. Any thread.
class TileIndexStore
{
public:
    using TileIndexPtr = std::shared_ptr<const TileIndex>;

    TileIndexStore(std::shared_ptr<ByteSource> source, ByteRange codestream, const MainHeader &header);

    /// One index for each of \a tiles, with the packets that decoding without the \a discarded highest resolutions
    /// needs. PLK_ERR_CANCELLED and the errors of the source.
    PLK::CError load(const std::vector<std::uint32_t> &tiles, int discarded, const CancelFlag &cancel,
                     std::vector<TileIndexPtr> *found);

private:
    /// A tile whose index is being made.
    struct Task;

    std::uint64_t readAhead(int discarded) const;
    std::uint64_t firstRead(const Task &task, const TilePart &part, std::uint64_t ahead) const;
    PLK::CError readHeaders(std::vector<Task> &tasks, int discarded, const CancelFlag &cancel);
    PLK::CError readHeaders(const std::vector<Task *> &tasks, std::uint64_t ahead, const CancelFlag &cancel);
    PLK::CError findParts(const std::vector<Task *> &tasks, std::uint64_t ahead, const CancelFlag &cancel);
    PLK::CError walk(std::vector<Task> &tasks, int discarded, const CancelFlag &cancel);

    std::shared_ptr<ByteSource> source;
    const ByteRange codestream;
    const MainHeader &header;
    std::uint64_t headerAhead = 0; ///< bytes that the headers of a tile's tile-parts are likely to take
    TilePartTable table;
    ByteBudgetMap<std::uint32_t, TileIndex> indexes;
};

} // namespace xrv
