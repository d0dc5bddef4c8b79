#pragma once

#include <string>

/// What a picture shows: a rectangle of the image, in cells of full resolution, and the size of the picture in pixels.
struct Window
{
    int x = 0, y = 0;
    int width = 0, height = 0;
    int pixelsAcross = 0, pixelsDown = 0;
};

/// A reader that makes pictures within this process. Failures are std::runtime_error.
class Peer
{
public:
    virtual ~Peer() = default;
    /// Opens \a path. What a program does once at its start belongs into the constructor.
    virtual void open(const std::string &path) = 0;
    /// Makes the whole picture of \a window.
    virtual void show(const Window &window) = 0;
};
