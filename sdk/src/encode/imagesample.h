#pragma once

#include "imagesource.h"
#include "tilecoding.h"

#include "base/cancelflag.h"

#include <functional>

namespace xrv {

/// Pieces from all over an image, kept in memory to be encoded in several ways. A small image is kept as a whole, in
/// its tiles; of a large one as many pieces as memory is given for, smaller than tiles, so that they can be many.
class ImageSample
{
public:
    static constexpr std::uint64_t kUsualBytes = 64u << 20;

    /// \a mostBytes: what the pieces may take.
    ImageSample(const ImageDescription &image, TileCoding coding, std::uint64_t mostBytes = kUsualBytes);

    /// Reads the pieces, of the rows in between nothing. \a source then has to start again. \a progress gets the share
    /// that is read, 0 to 1.
    PLK::CError read(ImageSource &source, const CancelFlag &cancel, const std::function<void(double)> &progress);

    /// By row, then from left to right.
    const std::vector<IntRect> &rects() const { return pieces; }
    std::int64_t cells(std::size_t piece) const { return pieces[piece].width() * pieces[piece].height(); }
    /// What a piece takes more than its share of a tile, of which it has more, smaller code-blocks.
    double excessBytes() const;
    /// Encodes a piece with \a step, as a tile, and gives the bytes of its packets. Any thread.
    PLK::CError encode(std::size_t piece, double step, std::uint64_t *bytes) const;

private:
    void spread(const ImageDescription &image, std::int64_t most);
    void keep(const std::vector<std::vector<std::int32_t>> &planes, Bytes *out) const;
    void unpack(const Bytes &in, const std::vector<std::int32_t *> &planes, std::size_t count) const;

    TileCoding coding;
    bool isWhole = true;
    std::vector<IntRect> pieces;
    std::vector<Bytes> packed; ///< of each piece: bands one after the other, in one or two bytes a cell
};

} // namespace xrv
