#include "memorysource.h"

namespace xrv {

MemorySource::MemorySource(Bytes content, std::string givenName)
    : bytes(std::move(content))
    , sourceName(std::move(givenName))
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
