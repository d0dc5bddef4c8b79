#pragma once

#include "codeblockfetch.h"

#include <memory>
#include <string>
#include <vector>

namespace xrv {

/// Gives decoded code-blocks: from the tile cache, or from the file by way of packet headers and code-block decoder,
/// on all cores. Any thread.
class CodeBlockStore
{
public:
    CodeBlockStore(std::shared_ptr<ByteSource> source, const MainHeader &header, std::uint64_t fileNumber);

    /// One set for each request. Damaged code-blocks are left out where \a policy goes on without them, with a sentence
    /// in \a damage; otherwise they are PLK_ERR_DECODE. PLK_ERR_CANCELLED.
    PLK::CError fetch(const std::vector<CodeBlockRequest> &requests, const DamagePolicy &policy,
                      const CancelFlag &cancel, std::vector<CodeBlockSet> *sets, std::string *damage);
    /// Has a distant source fetch the packets that \a requests need.
    PLK::CError prefetch(const std::vector<CodeBlockRequest> &requests, const CancelFlag &cancel);

private:
    CodeBlockFetch::Means means() { return {*source, precincts, reader, fileNumber}; }

    std::shared_ptr<ByteSource> source;
    const std::uint64_t fileNumber;
    PrecinctStore precincts;
    CodeBlockReader reader;
};

} // namespace xrv
