#pragma once

#include "rasterreader.h"

#include <vector>

namespace xrv {

/// What is left of \a rect without \a holes, as rectangles that do not overlap.
std::vector<IntRect> subtract(const IntRect &rect, const std::vector<IntRect> &holes);

/// Smallest rectangle around \a rects; empty without any.
IntRect boundingRect(const std::vector<IntRect> &rects);

/// \a rect in pieces of at most \a width by \a height.
std::vector<IntRect> inPieces(const IntRect &rect, std::int64_t width, std::int64_t height);

/// The part of the canvas that \a rect, cells of one component, stands for; and the cells of a component in a part of
/// the canvas.
IntRect toCanvas(const IntRect &rect, const ComponentInfo &component);
IntRect toComponent(const IntRect &canvas, const ComponentInfo &component);

/// All coordinates times 2^bits.
IntRect scaledUp(const IntRect &rect, int bits);

inline std::int64_t areaOf(const IntRect &rect)
{
    return rect.isEmpty() ? 0 : rect.width() * rect.height();
}

} // namespace xrv
