#pragma once

#include <xrv60/plkerror.h>

namespace xrv {

// What several of the published classes answer to calls that cannot be right.

inline PLK::CError invalidArgument(const char *sentence)
{
    return {PLK_ERR_INVALID_ARGUMENT, sentence};
}

inline PLK::CError notOpen()
{
    return {PLK_ERR_NOT_OPEN, "No file is open."};
}

} // namespace xrv
