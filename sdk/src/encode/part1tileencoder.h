#pragma once

#include "tileencoder.h"

struct opj_image;

namespace xrv {

/// Encodes with the block coding of ISO/IEC 15444-1, by OpenJPEG: to a rate, in quality layers.
class Part1TileEncoder : public TileEncoder
{
public:
    Part1TileEncoder(const TileCoding &coding, const IntRect &rect);
    ~Part1TileEncoder() override;

    std::vector<std::int32_t *> planes() override;

protected:
    PLK::CError runEncoder(Bytes *codestream) override;

private:
    opj_image *image = nullptr;
};

} // namespace xrv
