#include "wholefilesink.h"

#include "base/utf8.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

namespace xrv {

WholeFileSink::WholeFileSink(std::shared_ptr<CachedStream> cachedStream, std::string printableName)
    : stream(std::move(cachedStream))
    , version(stream->version())
    , name(std::move(printableName))
{
}

bool WholeFileSink::take(const HttpAnswer &head, std::uint64_t offset, const std::uint8_t *data, std::size_t length)
{
    if (!version.agreesWith(head) || length > version.length || offset > version.length - length)
        return false;
    stream->put(offset, data, length);
    const std::uint64_t tenth = version.length / 10 + 1;
    if ((offset + length) / tenth != offset / tenth && logEnabled(PLK_LOG_INFO))
        log(PLK_LOG_INFO, wideFromUtf8("\"" + name + "\" comes as a whole: " + std::to_string(offset + length) +
                                       " of " + std::to_string(version.length) + " bytes are here."));
    return true;
}

} // namespace xrv
