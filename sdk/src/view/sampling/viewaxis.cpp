#include "viewaxis.h"

#include <algorithm>
#include <cmath>

namespace xrv {

ViewAxis::ViewAxis(double firstEdge, double lastEdge, int pixels, std::uint32_t cells)
    : first(firstEdge)
    , half((lastEdge - firstEdge) / (2.0 * pixels))
    , pixelCount(pixels)
    , cells(cells)
{
    const double size = this->cells;
    if (isMirrored()) {
        begin = firstPixelWhere([=](double centre) { return centre < size; });
        end = firstPixelWhere([](double centre) { return centre < 0.0; });
    } else {
        begin = firstPixelWhere([](double centre) { return centre >= 0.0; });
        end = firstPixelWhere([=](double centre) { return centre >= size; });
    }
    end = std::max(begin, end);
}

template <typename Predicate> int ViewAxis::firstPixelWhere(Predicate predicate) const
{
    int low = 0, high = pixelCount;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (predicate(centre(middle)))
            high = middle;
        else
            low = middle + 1;
    }
    return low;
}

double ViewAxis::pitch() const
{
    return std::abs(half * 2.0);
}

void ViewAxis::cellsFor(int fromPixel, int toPixel, std::int64_t *firstCell, std::int64_t *lastCell) const
{
    const double a = centre(fromPixel), b = centre(toPixel - 1);
    *firstCell = static_cast<std::int64_t>(std::floor(std::min(a, b)));
    *lastCell = static_cast<std::int64_t>(std::floor(std::max(a, b))) + 1;
}

} // namespace xrv
