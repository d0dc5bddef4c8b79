#pragma once

#include "bandsampler.h"
#include "componentsampler.h"

#include "colour/bandmap.h"

#include <vector>

namespace xrv {

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
