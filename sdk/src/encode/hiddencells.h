#pragma once

#include "xrv/xrvrecords.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace xrv {

/// Finds the cells of an image that stand for no data: where every band has the value that was set aside for that or,
/// as Floats may, is no number.
class HiddenCells
{
public:
    static constexpr std::int32_t kOpaque = 255; ///< in 8 bits

    /// \a noData fits none of the cells where no band could hold it.
    HiddenCells(const std::vector<XrvBand> &bands, std::optional<double> noData);

    /// False where no cell can be one.
    bool arePossible() const { return isPossible; }
    /// Writes 0 or kOpaque for each of \a count cells. \a planes: one for each band.
    void mark(const std::vector<std::int32_t *> &planes, std::size_t count, std::int32_t *opacity) const;

private:
    struct BandValue
    {
        CellKind kind = CellKind::Whole;
        bool isThere = false; ///< a value that means no data
        std::int32_t bits = 0;
    };
    std::vector<BandValue> values;
    bool isPossible = true;
};

} // namespace xrv
