#include "bytesource.h"

namespace xrv {

PLK::CError ByteSource::read(ByteRange range, Bytes *out, const CancelFlag &cancel)
{
    std::vector<Bytes> parts;
    PLK::CError error = read(std::vector<ByteRange>{range}, cancel, &parts);
    if (!error)
        *out = std::move(parts.front());
    return error;
}

PLK::CError ByteSource::checkRanges(const std::vector<ByteRange> &ranges) const
{
    for (const ByteRange &range : ranges) {
        if (range.length > size() || range.offset > size() - range.length)
            return {PLK_ERR_TRUNCATED, "\"" + name() + "\" ends after " + std::to_string(size()) + " bytes, but " +
                                           std::to_string(range.length) + " bytes at position " +
                                           std::to_string(range.offset) + " are needed."};
    }
    return {};
}

} // namespace xrv
