#pragma once

#include "imagesource.h"

namespace xrv {

/// A whole box (ISO/IEC 15444-1 I.4) of less than 4 GiB.
Bytes makeBox(std::uint32_t type, const Bytes &content);
Bytes makeBox(std::uint32_t type, const std::string &content);
/// The header of a box whose content has \a contentLength bytes.
Bytes makeBoxHeader(std::uint32_t type, std::uint64_t contentLength);

/// Signature and file type box of a JP2 file (I.5.1, I.5.2), or of a JPH one (ISO/IEC 15444-15 annex D), whose
/// codestream has high-throughput code-blocks.
Bytes makeJp2Start(bool isHighThroughput);
/// JP2 header box (I.5.3): size, depths, colour space and the meaning of the bands.
Bytes makeHeaderBox(const ImageDescription &image);
/// GeoJP2 box; empty for tags that say nothing.
Bytes makeGeoBox(const GeoTags &tags);

} // namespace xrv
