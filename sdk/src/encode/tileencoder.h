#pragma once

#include "../codestream/mainheader.h"
#include "../decode/rasterreader.h"
#include "../xrv/xrvrecords.h"

#include <cstdint>
#include <memory>
#include <vector>

struct opj_image;

namespace xrv {

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
    std::vector<MarkerSegment> segments; ///< COD and QCD of the tile
    std::uint16_t capabilities = 0;      ///< Rsiz
};

/// Encodes one tile of an image, at its own place on the canvas, with OpenJPEG: the packets are those that an encoder
/// of the whole image would have made. Precincts are 256 x 256 cells at every resolution, code-blocks 64 x 64; packets
/// stand by resolution, then position, component and layer.
class TileEncoder
{
public:
    /// \a rect: the tile's cells, clipped to the image. Throws std::bad_alloc.
    TileEncoder(const TileCoding &coding, const IntRect &rect);
    ~TileEncoder();
    TileEncoder(const TileEncoder &) = delete;
    TileEncoder &operator=(const TileEncoder &) = delete;

    /// Where the cells of every band go, rows packed.
    std::vector<std::int32_t *> planes();
    /// Call once.
    PLK::CError encode(EncodedTile *tile);

private:
    PLK::CError runEncoder(Bytes *codestream);
    PLK::CError split(Bytes codestream, EncodedTile *tile) const;

    const TileCoding &coding;
    const IntRect rect;
    opj_image *image = nullptr;
};

} // namespace xrv
