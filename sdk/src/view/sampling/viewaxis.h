#pragma once

#include <cstdint>

namespace xrv {

/// One axis of a view: pixels laid over a stretch of the dataset. Positions are dataset coordinates in cells.
class ViewAxis
{
public:
    /// The outer edges of the first and the last pixel lie at \a firstEdge and \a lastEdge; the latter is the smaller
    /// one in mirrored views. \a cells is the size of the image along this axis.
    ViewAxis(double firstEdge, double lastEdge, int pixels, std::uint32_t cells);

    int pixels() const { return pixelCount; }
    double centre(int pixel) const { return first + (2.0 * pixel + 1.0) * half; }
    double firstEdge() const { return first; }
    /// Cells per pixel, never negative.
    double pitch() const;
    bool isMirrored() const { return half < 0.0; }

    /// Pixels [insideBegin, insideEnd) have their centres in the image.
    int insideBegin() const { return begin; }
    int insideEnd() const { return end; }
    int insideCount() const { return end - begin; }

    /// Whole cells [first, last) around the centres of the pixels [fromPixel, toPixel), which are inside.
    void cellsFor(int fromPixel, int toPixel, std::int64_t *firstCell, std::int64_t *lastCell) const;

private:
    template <typename Predicate> int firstPixelWhere(Predicate predicate) const;

    double first;
    double half; ///< half a pixel with its direction
    int pixelCount;
    double cells;
    int begin, end;
};

} // namespace xrv
