#pragma once

#include "tileencoder.h"

namespace ojph {
class codestream;
}

namespace xrv {

/// Encodes with the high-throughput code-blocks of ISO/IEC 15444-15, by OpenJPH: with one quantization step, in one
/// quality layer.
class OpenJphTileEncoder : public TileEncoder
{
public:
    OpenJphTileEncoder(const TileCoding &coding, const IntRect &rect);

    std::vector<std::int32_t *> planes() override;

protected:
    PLK::CError runEncoder(Bytes *codestream) override;

private:
    void pushRows(ojph::codestream *encoder) const;

    std::vector<std::vector<std::int32_t>> cells; ///< of each band
};

} // namespace xrv
