#pragma once

#include "stream/cache/cachedstream.h"
#include "stream/values/httpexchange.h"

#include <memory>
#include <string>

namespace xrv {

/// Takes a file that its server gives as a whole only into the cache on disk, and logs how far that is.
class WholeFileSink : public BodySink
{
public:
    WholeFileSink(std::shared_ptr<CachedStream> cachedStream, std::string printableName);
    /// Of another version nothing is taken.
    bool take(const HttpAnswer &head, std::uint64_t offset, const std::uint8_t *data, std::size_t length) override;

private:
    const std::shared_ptr<CachedStream> stream;
    const FileVersion version;
    const std::string name;
};

} // namespace xrv
