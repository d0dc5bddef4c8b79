#include "memorysource.h"

#include <atomic>

namespace xrv {

namespace {

std::uint64_t nextNumber()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

} // namespace

MemorySource::MemorySource(Bytes content, std::string givenName)
    : bytes(std::move(content))
    , sourceName(std::move(givenName))
    , number(nextNumber())
{
}

PLK::CError MemorySource::read(const std::vector<ByteRange> &ranges, const CancelFlag &cancel, std::vector<Bytes> *out)
{
    if (PLK::CError error = checkRanges(ranges))
        return error;
    if (cancel.isRaised())
        return {PLK_ERR_CANCELLED, "Reading was cancelled."};
    out->clear();
    for (const ByteRange &range : ranges) {
        const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(range.offset);
        out->emplace_back(begin, begin + static_cast<std::ptrdiff_t>(range.length));
    }
    return {};
}

} // namespace xrv
