#pragma once

#include "../codestream/packetindex.h"
#include "imagesource.h"

namespace xrv {

// All that comes before the codestream of a file, the header of the codestream's box included.

/// \a streamLength: bytes of the codestream.
Bytes makeJp2FileStart(const ImageDescription &image, std::uint64_t streamLength);

/// Fills in what \a info can tell of \a image and, once the size of the file is known, its actual rate. \a index may be
/// null.
Bytes makeXrvFileStart(const ImageDescription &image, XrvFileInfo info, const PLKFileStatistics &statistics,
                       const PacketIndex *index, std::uint64_t streamLength);

} // namespace xrv
