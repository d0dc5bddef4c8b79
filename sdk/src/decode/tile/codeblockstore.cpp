#include "codeblockstore.h"

#include <utility>

using PLK::CError;

namespace xrv {

CodeBlockStore::CodeBlockStore(std::shared_ptr<ByteSource> source, const MainHeader &header, std::uint64_t fileNumber)
    : source(std::move(source))
    , fileNumber(fileNumber)
    , precincts(this->source, header)
    , reader(this->source, header)
{
}

CError CodeBlockStore::fetch(const std::vector<CodeBlockRequest> &requests, const DamagePolicy &policy,
                             const CancelFlag &cancel, std::vector<CodeBlockSet> *sets, std::string *damage)
{
    CodeBlockFetch fetch(means(), requests, cancel);
    CError error = fetch.run(policy, damage);
    *sets = fetch.takeSets();
    return error;
}

CError CodeBlockStore::prefetch(const std::vector<CodeBlockRequest> &requests, const CancelFlag &cancel)
{
    return CodeBlockFetch(means(), requests, cancel).prefetchPackets();
}

} // namespace xrv
