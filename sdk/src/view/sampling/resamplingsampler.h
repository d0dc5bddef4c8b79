#pragma once

#include "bandsampler.h"
#include "blendedrows.h"
#include "columntaps.h"
#include "planerows.h"

#include "colour/bandmap.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace xrv {

/// Makes the lines of a view from one component, in the component's own grid.
class ComponentSampler
{
public:
    ComponentSampler(std::shared_ptr<ColumnTaps> columns, const RowTaps &rows);

    /// Every pixel is one cell.
    bool isPointwise() const { return columns->isPointwise() && rows.isPointwise(); }
    void bind(const Plane &newPlane);
    void sample(int y, std::int32_t *cells);
    /// Pointwise samplers only: through \a map to 8 bits.
    void sampleBytes(int y, const ByteMap &map, std::uint8_t *bytes) const;

private:
    void aim() const;
    const double *blendedRow(std::int64_t row);

    std::shared_ptr<ColumnTaps> columns;
    RowTaps rows;
    BlendedRows blended;
    const Plane *plane = nullptr;
};

/// Brings each component to the view's grid first and makes the bands from them there: the usual order, right for
/// subsampled components and colour conversions.
class ResamplingSampler : public BandSampler
{
public:
    /// \a components are bandMap.componentsFor(bands), and \a samplers belong to them one by one.
    ResamplingSampler(const BandMap &bandMap, std::vector<int> bands, const std::vector<int> &components,
                      std::vector<ComponentSampler> samplers, int count);

    void bind(const PlaneList &planes) override;
    void sample(int y, std::int32_t *const *bandRows) override;

    /// Bands are cells of components as they are, so that sampleBytes() can be used.
    bool isDirect() const { return direct; }
    void sampleBytes(int y, std::size_t band, const ByteMap &map, std::uint8_t *bytes) const;

private:
    const BandMap &bandMap;
    std::vector<int> bands;
    std::vector<ComponentSampler> samplers;
    int count;
    bool direct;
    std::vector<std::size_t> samplerOfBand; ///< for direct bands
    std::vector<std::vector<std::int32_t>> componentRows;
    std::vector<const std::int32_t *> componentRowPointers;
};

} // namespace xrv
