#pragma once

#include "rasterreader.h"

#include <vector>

namespace xrv {

/// What is left of \a rect without \a holes, as rectangles that do not overlap.
std::vector<IntRect> subtract(const IntRect &rect, const std::vector<IntRect> &holes);

/// Smallest rectangle around \a rects; empty without any.
IntRect boundingRect(const std::vector<IntRect> &rects);

inline std::int64_t areaOf(const IntRect &rect)
{
    return rect.isEmpty() ? 0 : rect.width() * rect.height();
}

} // namespace xrv
