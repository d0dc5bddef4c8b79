#pragma once

#include "encode/imagesource.h"

#include <cstddef>

/// An image whose rows come one after the other: those of one row of blocks are kept.
class RowSource : public xrv::ImageSource
{
public:
    const xrv::ImageDescription &description() const override { return image; }
    PLK::CError read(const xrv::IntRect &rect, const std::vector<std::int32_t *> &planes) override;
    PLK::CError rewind() override;

protected:
    /// Fills \a row with the next row of the image: the cells of all bands after each other for each column, in bytes
    /// or, where a band has more than 8 bits, in 16-bit words of this machine.
    virtual PLK::CError readRow(std::uint8_t *row) = 0;
    /// Passes over \a count rows, of itself by reading them.
    virtual PLK::CError skipRows(std::int64_t count);
    /// The next row is the first one again.
    virtual PLK::CError restart() = 0;

    std::size_t bytesPerCell() const;
    std::size_t rowBytes() const { return image.width * image.bands.size() * bytesPerCell(); }

    xrv::ImageDescription image;

private:
    PLK::CError keepRows(std::int64_t first, std::int64_t end);

    std::int64_t keptFirst = 0, keptEnd = 0;
    xrv::Bytes kept;
};
