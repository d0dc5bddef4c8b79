#pragma once

#include "io/bytesource.h"
#include "io/openwatch.h"
#include "stream/values/sourcename.h"

#include <memory>

namespace xrv {

/// Opens what \a name stands for: a file of this computer or an address. The fault() of the name; otherwise the errors
/// of FileSource::open() and StreamSource::open().
PLK::CError openSource(const SourceName &name, std::shared_ptr<ByteSource> *source,
                       std::shared_ptr<OpenWatch> watch = nullptr);

} // namespace xrv
