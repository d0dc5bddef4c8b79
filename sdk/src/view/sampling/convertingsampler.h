#pragma once

#include "bandsampler.h"
#include "blendedrows.h"
#include "columntaps.h"

#include "colour/bandmap.h"

#include <memory>
#include <vector>

namespace xrv {

/// Makes the bands on the components' grid first and interpolates them there: what lies between two entries of a
/// palette is between their colours, not between their numbers; and colours under an opacity band count by their
/// opacity, so that what is hidden does not shine through at the edges. All components must lie on one grid.
class ConvertingSampler : public BandSampler
{
public:
    /// \a opacity is the entry of \a bands by which the others are weighted, -1 for none.
    ConvertingSampler(const BandMap &bandMap, std::vector<int> bands, int opacity, std::shared_ptr<ColumnTaps> columns,
                      const RowTaps &rows);

    void bind(const PlaneList &planes) override;
    void sample(int y, std::int32_t *const *bandRows) override;

private:
    void makeBlendedRow(std::int64_t row, double *numbers);
    void convertRow(std::int64_t row);
    CellKind kindOf(std::size_t band) const { return bandMap.bands()[static_cast<std::size_t>(bands[band])].kind; }

    const BandMap &bandMap;
    std::vector<int> bands;
    int opacity;
    std::shared_ptr<ColumnTaps> columns;
    RowTaps rows;
    PlaneList planes;
    BlendedRows blended;
    std::vector<std::vector<std::int32_t>> componentRows, convertedRows;
    std::vector<double> weighted;
    std::vector<double> opacities;
};

} // namespace xrv
