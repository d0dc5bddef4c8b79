#pragma once

#include "io/bytesource.h"
#include "io/openwatch.h"

#include <memory>
#include <string>

namespace xrv {

/// Opens what \a name (UTF-8) stands for: a file of this computer or an address. PLK_ERR_PROTOCOL for addresses of a
/// protocol that is not served; otherwise the errors of FileSource::open() and StreamSource::open().
PLK::CError openSource(const std::string &name, std::shared_ptr<ByteSource> *source,
                       std::shared_ptr<OpenWatch> watch = nullptr);

} // namespace xrv
