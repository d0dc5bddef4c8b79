#pragma once

#include "blendedrows.h"
#include "columntaps.h"
#include "planerows.h"

#include <cstdint>
#include <memory>

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

} // namespace xrv
