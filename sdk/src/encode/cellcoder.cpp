#include "cellcoder.h"

#include <algorithm>

namespace xrv {

namespace {

/// Hidden cells of a row become like those to their left or else the first one to their right; a row of nothing else
/// becomes like the one above. So they cost nothing and do not show at lower resolutions. \a above may be null.
void fillHidden(std::uint32_t *codes, const std::uint32_t *above, const std::int32_t *opacity, std::size_t width)
{
    const auto isVisible = [](std::int32_t cell) { return cell != 0; };
    const auto first = static_cast<std::size_t>(std::find_if(opacity, opacity + width, isVisible) - opacity);
    if (first == width) {
        above ? std::copy_n(above, width, codes) : std::fill_n(codes, width, 0);
        return;
    }
    std::fill_n(codes, first, codes[first]);
    for (std::size_t i = first; i < width; ++i)
        if (!isVisible(opacity[i]))
            codes[i] = codes[i - 1];
}

} // namespace

CellCoder::CellCoder(std::vector<CellMapping> mappings)
    : bandMappings(std::move(mappings))
{
}

bool CellCoder::isMapped() const
{
    return std::any_of(bandMappings.begin(), bandMappings.end(),
                       [](const CellMapping &mapping) { return mapping.isMapped(); });
}

std::vector<int> CellCoder::componentBits(const std::vector<int> &bits) const
{
    std::vector<int> result = bits;
    for (std::size_t band = 0; band < bandMappings.size(); ++band)
        if (bandMappings[band].isMapped())
            result[band] = bandMappings[band].bits() - bandMappings[band].lowBits;
    for (const CellMapping &mapping : bandMappings)
        if (mapping.lowBits > 0)
            result.push_back(mapping.lowBits);
    return result;
}

void CellCoder::encode(const std::vector<std::int32_t *> &planes, std::size_t width, std::size_t count,
                       const std::int32_t *opacity) const
{
    std::size_t nextLow = bandMappings.size();
    std::vector<std::uint32_t> codes(width), above;
    for (std::size_t band = 0; band < bandMappings.size(); ++band) {
        const CellMapping &mapping = bandMappings[band];
        std::int32_t *low = mapping.lowBits > 0 ? planes[nextLow++] : nullptr;
        if (!mapping.isMapped())
            continue;
        above.clear();
        for (std::size_t row = 0; row < count; row += width) {
            std::int32_t *cells = planes[band] + row;
            std::transform(cells, cells + width, codes.begin(),
                           [&](std::int32_t cell) { return mapping.codeOf(cell); });
            if (mapping.hidden && opacity)
                fillHidden(codes.data(), above.empty() ? nullptr : above.data(), opacity + row, width);
            for (std::size_t i = 0; i < width; ++i) {
                cells[i] = static_cast<std::int32_t>(codes[i] >> mapping.lowBits);
                if (low)
                    low[row + i] = static_cast<std::int32_t>(codes[i] & ((std::uint32_t(1) << mapping.lowBits) - 1));
            }
            above = codes;
        }
    }
}

} // namespace xrv
