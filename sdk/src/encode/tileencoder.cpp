#include "tileencoder.h"

#include "httileencoder.h"
#include "part1tileencoder.h"
#include "tilesplitter.h"

namespace xrv {

using PLK::CError;

std::unique_ptr<TileEncoder> TileEncoder::make(const TileCoding &coding, const IntRect &rect)
{
    if (coding.isHighThroughput)
        return std::make_unique<HtTileEncoder>(coding, rect);
    return std::make_unique<Part1TileEncoder>(coding, rect);
}

CError TileEncoder::encode(EncodedTile *tile)
{
    Bytes codestream;
    if (CError error = runEncoder(&codestream))
        return error;
    return splitTile(std::move(codestream), tile);
}

} // namespace xrv
