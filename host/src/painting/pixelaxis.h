#pragma once

#include "deviceaxis.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Korvane {

/// How \c count image pixels fall onto the device pixels of one axis.
struct PixelAxis
{
    int count = 0;
    double start = 0.0; ///< Exact device coordinate of the image's first edge.
    double end = 0.0;   ///< Of its last edge; less than \c start when the image is turned over.
    double low = 0.0;   ///< Rounded edges, low < high.
    double high = 0.0;
    int first = 0; ///< Device pixels to draw, half open.
    int last = 0;

    bool isFlipped() const { return end < start; }
    bool isCopied() const { return high - low == count; }

    /// Image coordinate, in pixels, under the centre of device pixel \a pixel.
    double imageCoordinate(int pixel) const
    {
        if (!isCopied())
            return (pixel + 0.5 - start) / (end - start) * count;
        const double offset = pixel - low + 0.5;
        return isFlipped() ? count - offset : offset;
    }
};

/// Of the image's edges at \a worldStart and \a worldEnd; empty when nothing of it lies between \a clipLow and \a
/// clipHigh.
inline std::optional<PixelAxis> pixelAxis(const DeviceAxis &axis, double worldStart, double worldEnd, int count,
                                          double clipLow, double clipHigh)
{
    PixelAxis result;
    result.count = count;
    result.start = axis.toDevice(worldStart);
    result.end = axis.toDevice(worldEnd);
    if (!std::isfinite(result.start) || !std::isfinite(result.end) || result.start == result.end)
        return std::nullopt;
    result.low = roundedEdge(std::min(result.start, result.end));
    result.high = roundedEdge(std::max(result.start, result.end));

    const double low = std::max({result.low, clipLow, roundedEdge(std::min(axis.device1, axis.device2))});
    const double high = std::min({result.high, clipHigh, roundedEdge(std::max(axis.device1, axis.device2))});
    if (!(low < high) || std::abs(low) > 1e9 || std::abs(high) > 1e9)
        return std::nullopt;
    result.first = static_cast<int>(low);
    result.last = static_cast<int>(high);
    return result;
}

} // namespace Korvane
