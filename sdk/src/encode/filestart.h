#pragma once

#include "imagesource.h"

#include "codestream/packetindex.h"

namespace xrv {

/// Of the cells of \a image, each in whole bytes.
double uncompressedBytes(const ImageDescription &image);

// All that comes before the codestream of a file, the header of the codestream's box included.

/// \a streamLength: bytes of the codestream. \a index may be null.
Bytes makeJp2FileStart(const ImageDescription &image, bool isHighThroughput, const PacketIndex *index,
                       std::uint64_t streamLength);

/// The same; fills in what \a info can tell of \a image and, once the size of the file is known, its actual rate.
Bytes makeXrvFileStart(const ImageDescription &image, XrvFileInfo info, const std::vector<CellMapping> &mappings,
                       const PLKFileStatistics &statistics, const PacketIndex *index, std::uint64_t streamLength);

} // namespace xrv
