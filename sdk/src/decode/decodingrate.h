#pragma once

#include "rasterinfo.h"

#include <atomic>

namespace xrv {

/// How long decoding takes: a guess by the compressed size at first, then what was measured. Any thread.
class DecodingRate
{
public:
    /// \a bytes: of the codestream. \a isRemote: they have to come from a distant source.
    DecodingRate(const RasterInfo &raster, std::uint64_t bytes, bool isRemote);

    /// What \a jobs with \a cells in all of them will take on all cores.
    double milliseconds(double cells, std::size_t jobs) const;
    /// Takes note that \a cells took \a nanoseconds on all cores.
    void learn(double cells, double nanoseconds);

private:
    std::atomic<double> nanosecondsPerCell{0}; ///< one core
};

} // namespace xrv
