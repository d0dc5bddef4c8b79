#include "opensource.h"

#include "filenames.h"
#include "filesource.h"

namespace xrv {

using PLK::CError;

namespace {

/// The source of an "xrvp://" or "xrvps://" address belongs here.
CError openStream(const std::string &address, std::shared_ptr<ByteSource> *)
{
    return {PLK_ERR_PROTOCOL, "Streams cannot be read by this build yet: \"" + address + "\"."};
}

} // namespace

CError openSource(const std::string &name, std::shared_ptr<ByteSource> *source)
{
    if (isStreamAddress(name))
        return openStream(name, source);
    if (hasScheme(name, "jpip") || hasScheme(name, "jpips"))
        return {PLK_ERR_PROTOCOL, "The JPIP protocol is not supported: \"" + name + "\"."};
    if (hasScheme(name, "http") || hasScheme(name, "https"))
        return {PLK_ERR_PROTOCOL, "Images on a web server are opened by an address that begins with \"xrvp://\" or "
                                  "\"xrvps://\", not with \"http://\" or \"https://\": \"" +
                                      name + "\"."};
    return FileSource::open(localPath(name), source);
}

} // namespace xrv
