#pragma once

#include "jp2maker.h"

/// Makes codestreams with high-throughput code-blocks in memory for tests, with OpenJPH.
namespace htmaker {

/// The bare codestream; throws std::runtime_error. Of \a options everything counts but layers, regions of interest,
/// marker segments and what concerns the file around the codestream. Tiles end up in one tile-part each.
jp2maker::FileBytes make(const jp2maker::Options &options);

} // namespace htmaker
