#include "opensource.h"

#include "streamsource.h"

#include "io/filesource.h"

#include <utility>

namespace xrv {

PLK::CError openSource(const SourceName &name, std::shared_ptr<ByteSource> *source, std::shared_ptr<OpenWatch> watch)
{
    if (name.fault())
        return name.fault();
    if (name.isStream())
        return StreamSource::open(name.address(), StreamOptions::fromConfig(), source, std::move(watch));
    return FileSource::open(name.path(), source, watch ? watch->cancel : CancelFlag());
}

} // namespace xrv
