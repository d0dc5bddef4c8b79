#pragma once

#include "tileencoder.h"

#include "openjpegpointers.h"

namespace xrv {

/// Encodes with the code-blocks of ISO/IEC 15444-1 (annexes C and D), by OpenJPEG: to a rate, in quality layers.
class OpenJpegTileEncoder : public TileEncoder
{
public:
    OpenJpegTileEncoder(const TileCoding &coding, const IntRect &rect);

    std::vector<std::int32_t *> planes() override;

protected:
    PLK::CError runEncoder(Bytes *codestream) override;

private:
    OpenJpegImagePtr image;
};

} // namespace xrv
