#pragma once

#include "viewrequest.h"

#include "colour/bandmap.h"
#include "decode/rasterreader.h"
#include "view/sampling/bandsampler.h"
#include "view/sampling/resamplingsampler.h"
#include "view/sampling/viewaxis.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xrv {

/// Makes the lines of a view from the cells of one level: resampled, mapped to 8 bits and interleaved. One thread at a
/// time.
class LineMaker
{
public:
    LineMaker(const RasterInfo &raster, const BandMap &bandMap, RequestPtr request, int level);

    /// About as many lines as can be made from planes of \a budget bytes, at least one.
    int linesFor(std::size_t budget) const;

    /// Planes of the request's components, in this order, that cover the next lines; not copied.
    void bind(const std::vector<Plane> &planes);
    /// Opacity bands of less than 8 bits are scaled up to 0..255.
    void setAutoscaleOpacity(bool enabled) { autoscaleOpacity = enabled; }

    /// Writes line \a y: blue, green, red and alpha bytes per pixel.
    void makeBgra(int y, std::uint8_t *line);
    /// Writes line \a y: one buffer per band of the request.
    void makeBil(int y, PLKCellType type, void *const *lines);

private:
    void measure(int level);
    void chooseSampler(int level);
    std::vector<ComponentSampler> componentSamplers(int level, bool interpolate) const;
    bool onOneGrid(int level) const;
    int opacityEntry() const;
    bool isInside(int y) const { return y >= axisY.insideBegin() && y < axisY.insideEnd() && axisX.insideCount() > 0; }
    void makeCells(int y);
    void makeBytes(int y);
    void divideOutOpacity();
    const ByteMap &byteMap(std::size_t distinct) const;
    template <typename Cell> void writeCells(void *const *lines) const;

    const RasterInfo &raster;
    const BandMap &bandMap;
    RequestPtr request;
    ViewAxis axisX, axisY;
    std::vector<int> distinctBands;        ///< each band once
    std::vector<std::size_t> distinctOf;   ///< entry of the request's bands -> entry of distinctBands
    std::vector<std::size_t> requestEntry; ///< entry of distinctBands -> an entry of the request's bands
    int opacity = -1;                      ///< entry of distinctBands that is the opacity of the others, -1 for none
    bool isPremultiplied = false;
    bool autoscaleOpacity = false;
    double planeBytesPerRow = 0.0, rowsPerLine = 0.0;
    PlaneList planes;
    std::unique_ptr<BandSampler> sampler;
    const ResamplingSampler *byteSampler = nullptr;  ///< the same one, where it can make bytes at once
    std::vector<std::vector<std::int32_t>> cellRows; ///< one per distinct band
    std::vector<std::int32_t *> cellRowPointers;
    std::vector<std::vector<std::uint8_t>> byteRows;
};

} // namespace xrv
