#pragma once

#include "rasterread.h"

namespace xrv {

/// Decodes the jobs of reads with OpenJPEG, each from a small codestream of its tile: for the codings that
/// CodeBlockPath does not support.
class OpenJpegPath
{
public:
    OpenJpegPath(std::shared_ptr<ByteSource> source, const MainHeader &header, const RasterInfo &raster)
        : source(std::move(source))
        , header(header)
        , raster(raster)
    {
    }

    /// Decodes \a jobs of \a read, whose tiles are there.
    PLK::CError decode(RasterRead *read, const std::vector<std::size_t> &jobs);

private:
    PLK::CError decodeJob(RasterRead *read, std::size_t job);
    PLK::CError piecesOf(const RasterRead &read, std::size_t job, std::vector<IntRect> *pieces) const;
    PLK::CError decodeCells(RasterRead *read, std::size_t job, const IntRect &rect);

    std::shared_ptr<ByteSource> source;
    const MainHeader &header;
    const RasterInfo &raster;
};

} // namespace xrv
