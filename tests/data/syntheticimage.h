#pragma once

#include "encode/imagewriter.h"

#include <functional>
#include <string>
#include <vector>

/// An image of computed cells, for writing with the SDK's writer and for comparing with what is read back.
class SyntheticImage : public xrv::ImageSource
{
public:
    /// Cell of \a band at column \a x and row \a y.
    using CellFunction = std::function<std::int32_t(int band, int x, int y)>;

    SyntheticImage(int width, int height, int bands, int bits, bool isSigned = false);

    const xrv::ImageDescription &description() const override { return image; }
    PLK::CError read(const xrv::IntRect &rect, const std::vector<std::int32_t *> &planes) override;
    PLK::CError rewind() override { return {}; }
    /// All cells of \a band, rows packed.
    std::vector<std::int32_t> cells(int band) const;

    xrv::ImageDescription image; ///< to be changed before it is written
    CellFunction cell; ///< at first a smooth landscape with a little noise that reaches both ends of the range
};
