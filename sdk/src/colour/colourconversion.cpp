#include "colourconversion.h"

#include <algorithm>
#include <cmath>

namespace xrv {

int depthForConversion(const std::vector<Channel> &channels)
{
    int bits = 8;
    for (const Channel &channel : channels)
        bits = std::max<int>(bits, channel.bits);
    return std::min(bits, 31);
}

double fullScale(int bits)
{
    return std::ldexp(1.0, bits) - 1.0;
}

double signOffset(const Channel &channel)
{
    return channel.isSigned ? std::ldexp(1.0, channel.bits - 1) : 0.0;
}

} // namespace xrv
