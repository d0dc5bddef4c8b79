#include "rectset.h"

#include <algorithm>

namespace xrv {

namespace {

void subtractOne(const IntRect &rect, const IntRect &hole, std::vector<IntRect> *rest)
{
    const IntRect common = rect.intersected(hole);
    if (common.isEmpty()) {
        rest->push_back(rect);
        return;
    }
    // Columns left and right over the full height, what is left above and below between them.
    const IntRect parts[] = {{rect.x0, rect.y0, common.x0, rect.y1},
                             {common.x1, rect.y0, rect.x1, rect.y1},
                             {common.x0, rect.y0, common.x1, common.y0},
                             {common.x0, common.y1, common.x1, rect.y1}};
    for (const IntRect &part : parts)
        if (!part.isEmpty())
            rest->push_back(part);
}

} // namespace

std::vector<IntRect> subtract(const IntRect &rect, const std::vector<IntRect> &holes)
{
    std::vector<IntRect> rest;
    if (!rect.isEmpty())
        rest.push_back(rect);
    for (const IntRect &hole : holes) {
        std::vector<IntRect> next;
        for (const IntRect &part : rest)
            subtractOne(part, hole, &next);
        rest = std::move(next);
    }
    return rest;
}

IntRect boundingRect(const std::vector<IntRect> &rects)
{
    if (rects.empty())
        return {};
    IntRect bounds = rects.front();
    for (const IntRect &rect : rects)
        bounds = {std::min(bounds.x0, rect.x0), std::min(bounds.y0, rect.y0), std::max(bounds.x1, rect.x1),
                  std::max(bounds.y1, rect.y1)};
    return bounds;
}

std::vector<IntRect> inPieces(const IntRect &rect, std::int64_t width, std::int64_t height)
{
    std::vector<IntRect> pieces;
    for (std::int64_t y = rect.y0; y < rect.y1; y += height)
        for (std::int64_t x = rect.x0; x < rect.x1; x += width)
            pieces.push_back({x, y, std::min(rect.x1, x + width), std::min(rect.y1, y + height)});
    return pieces;
}

} // namespace xrv
