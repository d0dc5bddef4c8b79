#include "scenarios.h"

#include <algorithm>

namespace {

Window windowAt(int x, int y, int cellsPerPixel)
{
    return {x, y, kPictureWidth * cellsPerPixel, kPictureHeight * cellsPerPixel, kPictureWidth, kPictureHeight};
}

/// All of the image, in the middle of a picture of the usual size.
Window wholeScene(int imageWidth, int imageHeight)
{
    const double cellsPerPixel =
        std::max(static_cast<double>(imageWidth) / kPictureWidth, static_cast<double>(imageHeight) / kPictureHeight);
    const int width = static_cast<int>(kPictureWidth * cellsPerPixel + 0.5);
    const int height = static_cast<int>(kPictureHeight * cellsPerPixel + 0.5);
    return {(imageWidth - width) / 2, (imageHeight - height) / 2, width, height, kPictureWidth, kPictureHeight};
}

/// Begins off the grid of the tiles, as a person's views do.
Walk walk(const char *name, int imageWidth, int imageHeight, int cellsPerPixel)
{
    Window window = windowAt(331, 0, cellsPerPixel);
    int stepX = window.width / 4;
    const int stepY = window.height / 8;
    window.y = std::max(0, (imageHeight - window.height - kPans * stepY) / 2);
    Walk result{name, {window}};
    for (int pan = 0; pan < kPans; ++pan) {
        if (window.x + stepX < 0 || window.x + stepX + window.width > imageWidth)
            stepX = -stepX;
        window.x += stepX;
        window.y += stepY;
        result.windows.push_back(window);
    }
    return result;
}

} // namespace

std::vector<SingleView> singleViews(int imageWidth, int imageHeight)
{
    // Off the middle by odd numbers, so that no window falls onto the grid of the tiles.
    const int x = imageWidth * 2 / 5 + 17, y = imageHeight * 2 / 5 + 31;
    return {{"1:1 window", windowAt(x, y, 1)},
            {"1:4 window", windowAt(x / 2, y / 2, 4)},
            {"whole scene", wholeScene(imageWidth, imageHeight)}};
}

std::vector<Walk> walks(int imageWidth, int imageHeight)
{
    return {walk("1:1", imageWidth, imageHeight, 1), walk("1:4", imageWidth, imageHeight, 4)};
}
