#include "viewclipping.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace Korvane {

namespace {

/// Cells are counted in doubles' exact whole numbers; what lies beyond is beyond any image.
constexpr double kMaxCell = 9007199254740992.0; // 2^53

/// The largest pictures: what the SDK takes on either side, and what the system can be asked for altogether. Cells
/// shown thousands of pixels wide are asked for whole, however little of them the window shows.
constexpr int kMaxSide = 65535;
constexpr double kMaxPixels = 1 << 26;
/// What larger ones are reduced to: they show few cells, which are no better for more pixels.
constexpr double kReducedPixels = 1 << 24;

/// A whole number from \a cell; 0 for a NaN.
std::int64_t toCell(double cell)
{
    if (std::isnan(cell))
        return 0;
    return static_cast<std::int64_t>(std::clamp(cell, -kMaxCell, kMaxCell));
}

bool missesRange(double a, double b, double low, double high)
{
    return (low > a && low > b) || (a > high && b > high);
}

/// Device pixel, counted from the request's edge \a from, that world coordinate \a edge falls on.
std::int64_t pixelOfEdge(double edge, double from, double to, int pixels)
{
    const double pixel = (edge - from) / (to - from) * pixels + 0.5;
    return std::isfinite(pixel) ? toCell(pixel) : 0;
}

/// Pixels for \a cells, about \a share of \a pixels: a whole number for each cell where there is more than one.
int reducedPixels(int pixels, double share, double cells)
{
    const double wished = std::clamp(pixels * share, 1.0, double(kMaxSide));
    const double whole = std::max(1.0, std::round(cells));
    return static_cast<int>(wished >= whole ? whole * std::floor(wished / whole) : wished);
}

int toPixelCount(std::int64_t count)
{
    return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
}

/// \a requested with the corners given: nothing where less than a pixel is left between them.
std::optional<ClippedView> viewBetween(const ClippedView &requested, const QPointF &topLeft, const QPointF &bottomRight)
{
    const auto &[width, height, x1, y1, x2, y2] = requested;
    // Pixels of the request, each edge rounded by itself: as many as the part takes up on the screen, at the scale of
    // the whole. The edges may lie outside of it, by what the view has grown.
    const std::int64_t clippedWidth =
        pixelOfEdge(bottomRight.x(), x1, x2, width) - pixelOfEdge(topLeft.x(), x1, x2, width);
    const std::int64_t clippedHeight =
        pixelOfEdge(bottomRight.y(), y1, y2, height) - pixelOfEdge(topLeft.y(), y1, y2, height);
    if (clippedWidth < 1 || clippedHeight < 1)
        return std::nullopt;
    return ClippedView{toPixelCount(clippedWidth),
                       toPixelCount(clippedHeight),
                       topLeft.x(),
                       topLeft.y(),
                       bottomRight.x(),
                       bottomRight.y()};
}

/// For requests that run with the columns and rows of the image.
std::optional<ClippedView> clipAlongGrid(const ImageGrid &grid, const ClippedView &requested)
{
    // Edges that only touch do not miss each other. A NaN misses nothing either: it leaves no pixels in the end.
    const double right = grid.width * grid.cellX + grid.originX;
    const double bottom = grid.height * grid.cellY + grid.originY;
    const double lowY = grid.cellY > 0 ? grid.originY : bottom;
    const double highY = grid.cellY > 0 ? bottom : grid.originY;
    if (missesRange(requested.x1, requested.x2, grid.originX, right) ||
        missesRange(requested.y1, requested.y2, lowY, highY))
        return std::nullopt;

    // Outward to whole cells: what a cell looks like does not depend on where the window's edge cuts through it.
    const std::int64_t firstColumn = toCell(std::floor((requested.x1 - grid.originX) / grid.cellX));
    const std::int64_t firstRow = toCell(std::floor((requested.y1 - grid.originY) / grid.cellY));
    const std::int64_t endColumn = toCell(std::ceil((requested.x2 - grid.originX) / grid.cellX));
    const std::int64_t endRow = toCell(std::ceil((requested.y2 - grid.originY) / grid.cellY));
    QPointF topLeft = grid.cellToWorld(double(firstColumn), double(firstRow));
    QPointF bottomRight = grid.cellToWorld(double(endColumn), double(endRow));
    // The image's own edges take no part in what the transform rounds, so two views of a border agree on its place.
    if (firstColumn < 0)
        topLeft.setX(grid.originX);
    if (firstRow < 0)
        topLeft.setY(grid.originY);
    if (endColumn > std::int64_t(grid.width) - 1)
        bottomRight.setX(right);
    if (endRow > std::int64_t(grid.height) - 1)
        bottomRight.setY(bottom);

    return viewBetween(requested, topLeft, bottomRight);
}

/// The cells of one axis from \a from to \a to, either of which may be the higher one: outward to whole cells, within
/// the image's \a count.
std::pair<double, double> wholeCells(double from, double to, double count)
{
    const double low = std::clamp(std::floor(std::min(from, to)), 0.0, count);
    const double high = std::clamp(std::ceil(std::max(from, to)), 0.0, count);
    return from <= to ? std::pair(low, high) : std::pair(high, low);
}

/// For requests that run in any direction.
std::optional<ClippedView> clipAcrossGrid(const ImageGrid &grid, const ClippedView &requested)
{
    const auto [column1, column2] =
        wholeCells((requested.x1 - grid.originX) / grid.cellX, (requested.x2 - grid.originX) / grid.cellX, grid.width);
    const auto [row1, row2] =
        wholeCells((requested.y1 - grid.originY) / grid.cellY, (requested.y2 - grid.originY) / grid.cellY, grid.height);
    return viewBetween(requested, grid.cellToWorld(column1, row1), grid.cellToWorld(column2, row2));
}

} // namespace

std::optional<ClippedView> clipView(const ImageGrid &grid, const ClippedView &requested)
{
    const std::optional<ClippedView> clipped = clipAlongGrid(grid, requested);
    // Requests that run against the image seem to miss it where they lie within it, and so does every one where the
    // columns run to the left: the right edge is the lower one there.
    const bool goesAgainst = (requested.x2 - requested.x1) * grid.cellX < 0 ||
                             (requested.y2 - requested.y1) * grid.cellY < 0 || grid.cellX < 0;
    return clipped || !goesAgainst ? clipped : clipAcrossGrid(grid, requested);
}

QSize decodedSize(const ImageGrid &grid, const ClippedView &view)
{
    const double pixels = double(view.width) * view.height;
    if (pixels <= kMaxPixels && view.width <= kMaxSide && view.height <= kMaxSide)
        return {view.width, view.height};
    const double share = std::min(1.0, std::sqrt(kReducedPixels / pixels));
    return {reducedPixels(view.width, share, std::abs((view.x2 - view.x1) / grid.cellX)),
            reducedPixels(view.height, share, std::abs((view.y2 - view.y1) / grid.cellY))};
}

} // namespace Korvane
