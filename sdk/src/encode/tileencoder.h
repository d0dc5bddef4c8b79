#pragma once

#include "tilecoding.h"

#include "base/plane.h"

#include <memory>

namespace xrv {

/// Encodes one tile of an image, at its own place on the canvas: the packets are those that an encoder of the whole
/// image would have made. Precincts are 256 x 256 cells at every resolution, code-blocks 64 x 64; packets stand by
/// resolution, then position, component and layer.
class TileEncoder
{
public:
    virtual ~TileEncoder() = default;
    TileEncoder(const TileEncoder &) = delete;
    TileEncoder &operator=(const TileEncoder &) = delete;

    /// The one that \a coding, which must outlive it, asks for. \a rect: the tile's cells, clipped to the image.
    /// Throws std::bad_alloc.
    static std::unique_ptr<TileEncoder> make(const TileCoding &coding, const IntRect &rect);

    /// Where the cells of every band go, rows packed.
    virtual std::vector<std::int32_t *> planes() = 0;
    /// Call once. Any thread.
    PLK::CError encode(EncodedTile *tile);

protected:
    TileEncoder(const TileCoding &coding, const IntRect &rect)
        : coding(coding)
        , rect(rect)
    {
    }
    /// Makes a whole codestream of the one tile.
    virtual PLK::CError runEncoder(Bytes *codestream) = 0;

    const TileCoding &coding;
    const IntRect rect;
};

} // namespace xrv
