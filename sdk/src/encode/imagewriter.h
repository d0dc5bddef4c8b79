#pragma once

#include "imagesource.h"

#include "base/cancelflag.h"

#include <functional>
#include <string>
#include <vector>

namespace xrv {

enum class FileKind { Xrv, GeoJp2 };

struct WriteOptions
{
    FileKind kind = FileKind::Xrv;
    bool isLossless = true;
    double rate = 10.0;         ///< n of n:1 where it is not lossless, 1 to 1000
    std::uint32_t tileSize = 0; ///< side of the square tiles, a power of two of 64 to 16384; 0 lets the writer choose
    int layers = 1;             ///< quality layers, 1 to 32
    bool isHighThroughput = false; ///< code-blocks of ISO/IEC 15444-15, in one quality layer
    int threads = 0;               ///< 0: as many as there are cores
    std::string compressionDate;   ///< empty: now
    CancelFlag cancel;
    std::function<void(double)> progress; ///< share of the work that is done, 0 to 1; from any of the threads, one at a
                                          ///< time
};

/// Compresses \a source into the file \a path (UTF-8). Needs memory for a few tiles for every thread, whatever the
/// size of the image. The file appears when it is complete; on failure and on cancelling nothing is left behind.
/// PLK_ERR_UNSUPPORTED for what the format cannot hold, PLK_ERR_CANCELLED, errors of the source, PLK_ERR_NO_ACCESS
/// where the file cannot be written.
PLK::CError writeImage(ImageSource &source, const WriteOptions &options, const std::string &path);

} // namespace xrv
