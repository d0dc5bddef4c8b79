#pragma once

#include <QPointF>
#include <QSize>

#include <cstdint>
#include <functional>
#include <optional>

namespace Korvane {

/// Where an image lies in the world.
struct ImageGrid
{
    std::uint32_t width; ///< cells
    std::uint32_t height;
    double cellX; ///< world units per cell; cellY is negative for north-up images
    double cellY;
    double originX; ///< top-left corner of cell (0, 0)
    double originY;
    /// World coordinates of the top-left corner of a cell, given by column and row.
    std::function<QPointF(double, double)> cellToWorld;
};

/// \a width by \a height pixels that show the world rectangle from (x1, y1) top left to (x2, y2) bottom right.
struct ClippedView
{
    int width;
    int height;
    double x1;
    double y1;
    double x2;
    double y2;
};

/// The part of \a requested that lies on the image, grown to whole cells, with the size in pixels that it has there.
/// Nothing when the two do not meet, when less than a pixel is left, or when the request is no rectangle (not finite,
/// or without extent).
std::optional<ClippedView> clipView(const ImageGrid &grid, const ClippedView &requested);

/// The size in pixels to decode \a view in: its own, or where that is more than a picture may have (65,535 either way,
/// 2^26 altogether) a smaller one with whole pixels for each cell, so that stretched to the view's size every cell lies
/// where it belongs.
QSize decodedSize(const ImageGrid &grid, const ClippedView &view);

} // namespace Korvane
