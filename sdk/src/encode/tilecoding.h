#pragma once

#include "codestream/mainheader.h"
#include "xrv/xrvrecords.h"

#include <cstdint>
#include <vector>

namespace xrv {

constexpr int kPrecinctSize = 256; ///< sides at every resolution, cells
constexpr int kCodeBlockSize = 64; ///< sides, cells

/// How the tiles of an image are coded.
struct TileCoding
{
    std::vector<XrvBand> bands;
    bool isLossless = true;
    double rate = 10.0;            ///< n of n:1 where it is not lossless; bytes of the cells, each band in whole bytes
    int layers = 1;                ///< quality layers, 1 to 32
    std::uint32_t tileSize = 1024; ///< sides of the tiles that are not clipped, cells
    int levels = 5;                ///< decomposition levels
    bool hasColourTransform = false; ///< the first three bands are red, green and blue of the same type
    bool isHighThroughput = false;   ///< code-blocks of ISO/IEC 15444-15: by step in place of rate, in one layer
    double step = 1.0 / 256.0;       ///< quantization step where it is not lossless, as share of the range of a band
};

/// A tile as it comes from the encoder.
struct EncodedTile
{
    /// The packets of one resolution.
    struct Part
    {
        Bytes packets;
        std::vector<std::uint32_t> lengths; ///< of the packets
    };
    std::vector<Part> parts;             ///< lowest resolution first
    std::vector<MarkerSegment> segments; ///< CAP, COD and QCD of the tile
    std::uint16_t capabilities = 0;      ///< Rsiz
};

} // namespace xrv
