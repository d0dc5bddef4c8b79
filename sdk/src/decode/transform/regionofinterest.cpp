#include "regionofinterest.h"

#include <algorithm>

namespace xrv {

int regionOfInterestShift(const Bytes &parameters)
{
    // Srgn 0 is the implicit (maximum shift) method, the only one of this part of the standard.
    return parameters.size() >= 2 && parameters[0] == 0 ? parameters[1] : 0;
}

/// The shift is larger than all that lies outside of the region, so what reaches above it belongs to the region: no
/// mask is needed to tell.
template <typename Cell> void undoRegionOfInterest(int shift, std::vector<Cell> *coefficients)
{
    constexpr int kMaxShift = int(8 * sizeof(Cell)) - 2; // coefficients have no more bits
    if (shift >= kMaxShift)
        return;
    for (Cell &value : *coefficients) {
        const Cell magnitude = value < 0 ? -value : value;
        if (magnitude >> (shift + 1) != 0) // doubled
            value = value < 0 ? -(magnitude >> shift) : magnitude >> shift;
    }
}

template void undoRegionOfInterest(int, std::vector<std::int32_t> *);
template void undoRegionOfInterest(int, std::vector<std::int64_t> *);

} // namespace xrv
