#include "pixelrow.h"

namespace xrv {

namespace {

#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
constexpr int kBlue = 24, kGreen = 16, kRed = 8, kAlpha = 0;
#else
constexpr int kBlue = 0, kGreen = 8, kRed = 16, kAlpha = 24;
#endif

std::uint32_t packed(std::uint8_t blue, std::uint8_t green, std::uint8_t red, std::uint8_t alpha)
{
    return static_cast<std::uint32_t>(blue) << kBlue | static_cast<std::uint32_t>(green) << kGreen |
           static_cast<std::uint32_t>(red) << kRed | static_cast<std::uint32_t>(alpha) << kAlpha;
}

} // namespace

void interleaveBgra(const std::uint8_t *blue, const std::uint8_t *green, const std::uint8_t *red,
                    const std::uint8_t *alpha, int count, std::uint8_t *pixels)
{
    // Whole pixels are written at once, in a form that compilers turn into vector code.
    if (alpha == nullptr) {
        for (int i = 0; i < count; ++i) {
            const std::uint32_t pixel = packed(blue[i], green[i], red[i], 255);
            std::memcpy(pixels + 4 * static_cast<std::size_t>(i), &pixel, sizeof pixel);
        }
        return;
    }
    for (int i = 0; i < count; ++i) {
        const std::uint32_t pixel = packed(blue[i], green[i], red[i], alpha[i]);
        std::memcpy(pixels + 4 * static_cast<std::size_t>(i), &pixel, sizeof pixel);
    }
}

std::size_t cellSize(PLKCellType type)
{
    switch (type) {
    case PLKCT_UINT8:
    case PLKCT_INT8:
        return 1;
    case PLKCT_UINT16:
    case PLKCT_INT16:
        return 2;
    case PLKCT_UINT32:
    case PLKCT_INT32:
    case PLKCT_FLOAT:
        return 4;
    case PLKCT_UINT64:
    case PLKCT_INT64:
    case PLKCT_DOUBLE:
        return 8;
    }
    return 0;
}

} // namespace xrv
