#pragma once

#include "tilecoding.h"

#include <xrv60/plkerror.h>

namespace xrv {

/// Takes a codestream of one tile in one tile-part apart into the packets of its resolutions. They must stand by
/// resolution; their lengths come from PLT marker segments (ISO/IEC 15444-1 A.7.3) or, without them, from their
/// headers. PLK_ERR_DECODE where \a codestream is none of that.
PLK::CError splitTile(Bytes codestream, EncodedTile *tile);

} // namespace xrv
