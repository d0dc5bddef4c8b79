#include "tileencoder.h"

#include "openjpegtileencoder.h"
#include "openjphtileencoder.h"
#include "tilesplitter.h"

namespace xrv {

using PLK::CError;

std::unique_ptr<TileEncoder> TileEncoder::make(const TileCoding &coding, const IntRect &rect)
{
    if (coding.isHighThroughput)
        return std::make_unique<OpenJphTileEncoder>(coding, rect);
    return std::make_unique<OpenJpegTileEncoder>(coding, rect);
}

CError TileEncoder::encode(EncodedTile *tile)
{
    Bytes codestream;
    if (CError error = runEncoder(&codestream))
        return error;
    return splitTile(std::move(codestream), tile);
}

} // namespace xrv
