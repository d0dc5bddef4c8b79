#pragma once

#include "boxreader.h"

namespace xrv {

/// Finds the codestream that a fragment table box (ISO/IEC 15444-2 M.11.3) describes. PLK_ERR_UNSUPPORTED where it lies
/// in another file or in pieces that do not follow each other, PLK_ERR_MALFORMED without a readable list; \a codestream
/// is then left alone.
PLK::CError readFragmentTable(BoxReader &reader, const Box &table, ByteRange *codestream);

} // namespace xrv
