#pragma once

#include "channels.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xrv {

/// Makes cells of one colour space from cells of another one. Immutable; any thread.
class ColourConversion
{
public:
    virtual ~ColourConversion() = default;

    /// Bits of the cells that it makes; they have no sign.
    virtual int outputBits() const = 0;
    /// Makes \a width cells per row. \a in has a row per input channel and \a out one per output channel; no row of one
    /// is a row of the other. Cells outside of their depth are taken as the nearest one inside of it.
    virtual void convert(const std::int32_t *const *in, int width, std::int32_t *const *out) const = 0;
};

/// Depth that converted bands get: that of the deepest channel, but no less than 8 bits.
int depthForConversion(const std::vector<Channel> &channels);

/// Largest cell of a depth without sign.
double fullScale(int bits);
/// What a signed channel lacks to count from 0.
double signOffset(const Channel &channel);

} // namespace xrv
