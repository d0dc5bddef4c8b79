#pragma once

#include "tilecodestream.h"

#include "base/plane.h"

#include <cstdint>
#include <string>
#include <vector>

namespace xrv {

/// What to decode of a codestream with one tile.
struct OpenJpegRequest
{
    const TileCodestream *codestream = nullptr;
    IntRect area;                ///< on the codestream's canvas; all of the tile decodes fastest
    bool isWholeTile = false;    ///< area is all of the tile
    std::vector<int> components; ///< to decode, indices in the codestream; all when empty
};

/// Cells of one component as OpenJPEG gives them.
struct DecodedComponent
{
    std::int64_t width = 0, height = 0;
    std::vector<std::int32_t> cells; ///< rows packed
};

/// Decodes with OpenJPEG. PLK_ERR_DECODE with what the codec said, PLK_ERR_OUT_OF_MEMORY.
///
/// Damage is always an error, and the codec has no threads of its own: when it is to go on with damaged data, or
/// decodes them on several threads, release 2.5.0 reads beyond its buffers.
PLK::CError decodeWithOpenJpeg(const OpenJpegRequest &request, std::vector<DecodedComponent> *components);

/// Puts decoded cells, which cover \a decodedRect, into a plane of that rectangle.
Plane planeFromCells(int component, const IntRect &decodedRect, SampleType type, const DecodedComponent &decoded);

} // namespace xrv
