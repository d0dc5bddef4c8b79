#pragma once

#include "base/rect.h"

#include <vector>

namespace xrv {

/// What is left of \a rect without \a holes, as rectangles that do not overlap.
std::vector<IntRect> subtract(const IntRect &rect, const std::vector<IntRect> &holes);

/// Smallest rectangle around \a rects; empty without any.
IntRect boundingRect(const std::vector<IntRect> &rects);

/// \a rect in pieces of at most \a width by \a height.
std::vector<IntRect> inPieces(const IntRect &rect, std::int64_t width, std::int64_t height);

} // namespace xrv
