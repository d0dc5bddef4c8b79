#include "opensource.h"

#include "streamsource.h"

#include "io/filenames.h"
#include "io/filesource.h"
#include "stream/values/streamaddress.h"

#include <utility>

namespace xrv {

using PLK::CError;

CError openSource(const std::string &name, std::shared_ptr<ByteSource> *source, std::shared_ptr<OpenWatch> watch)
{
    if (isStreamAddress(name))
        return StreamSource::open(name, StreamOptions::fromConfig(), source, std::move(watch));
    if (hasScheme(name, "jpip") || hasScheme(name, "jpips"))
        return {PLK_ERR_PROTOCOL, "The JPIP protocol is not supported: \"" + shownName(name) + "\"."};
    if (hasScheme(name, "http") || hasScheme(name, "https"))
        return {PLK_ERR_PROTOCOL, "Images on a web server are opened by an address that begins with \"xrvp://\" or "
                                  "\"xrvps://\", not with \"http://\" or \"https://\": \"" +
                                      shownName(name) + "\"."};
    return FileSource::open(localPath(name), source);
}

} // namespace xrv
