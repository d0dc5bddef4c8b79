#pragma once

#include "pixelaxis.h"

#include <QImage>

#include <array>
#include <vector>

namespace Korvane {

/// Makes the device pixels that an image covers, row by row: the nearest pixel, or interpolated between four. The rows
/// come in strips of any height, so that no second picture of the full size has to be had for every repaint.
class ImageResampler
{
public:
    /// Covers what \a horizontal and \a vertical say is to be drawn of \a image.
    ImageResampler(const QImage &image, const PixelAxis &horizontal, const PixelAxis &vertical, bool smooth);

    int width() const { return columnCount; }
    int height() const { return rowCount; }
    /// Of the strips.
    QImage::Format format() const { return stripFormat; }

    /// Writes rows \a first to \a first + \a count - 1 into the first \a count rows of \a strip.
    void fill(QImage *strip, int first, int count);

private:
    /// A device pixel's two source pixels and the weight, of 256, of the second one.
    struct Tap
    {
        int first;
        int second;
        uint weight;
    };

    /// Device pixels in succession whose source pixels are in succession too: nearly all of them where a picture is
    /// stretched by a pixel or two only.
    struct Run
    {
        size_t start;
        size_t count;
    };

    /// A row of the source, stretched to the columns of the device.
    struct Line
    {
        int index = -1;
        std::vector<QRgb> pixels;
    };

    static std::vector<int> nearestPixels(const PixelAxis &axis);
    static std::vector<Tap> linearTaps(const PixelAxis &axis);
    const QRgb *nearestRow(int index);
    const QRgb *smoothRow(int index);
    const QRgb *premultipliedRow(int index);
    void stretch(int index, Line *line);
    void findRuns();

    QImage source;
    QImage::Format stripFormat;
    bool isSmooth;
    int columnCount;
    int rowCount;
    std::vector<int> nearestColumns;
    std::vector<int> nearestRows;
    std::vector<Tap> smoothColumns;
    std::vector<Run> smoothRuns;
    std::vector<quint16> byteWeights; // of the second source pixel, for each byte of the device's columns
    std::vector<Tap> smoothRows;
    // The lines used last: an enlarged picture takes many rows in succession from the same two.
    std::array<Line, 2> lines;
    size_t latestLine = 0;
    std::vector<QRgb> premultiplied;
};

} // namespace Korvane
