#pragma once

#include "peer.h"

#include <vector>

/// A picture size that is usual for a map window.
constexpr int kPictureWidth = 1024, kPictureHeight = 768;

/// A picture to be made of an image that was just opened.
struct SingleView
{
    const char *name;
    Window window;
};

/// A walk across the image: the first window is where it starts.
struct Walk
{
    const char *name;
    std::vector<Window> windows;
};

constexpr int kPans = 20;

std::vector<SingleView> singleViews(int imageWidth, int imageHeight);
/// Diagonal pans: each one a quarter of the view across and an eighth down; turns back at the sides of the image.
std::vector<Walk> walks(int imageWidth, int imageHeight);
