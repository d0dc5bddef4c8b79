#pragma once

#include <xrv60/plkerror.h>

#include <cstdint>
#include <string>

/// Whether reading \a path may hold \a bytes of cells at once: a header of a hundred bytes can claim any number of
/// them. What any file may have, and times what the file is long, as cells that were compressed take more. Else
/// PLK_ERR_UNSUPPORTED with a sentence that names the number.
PLK::CError admitAtOnce(const std::string &path, std::uint64_t bytes);
