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
void undoRegionOfInterest(int shift, std::vector<std::int32_t> *coefficients)
{
    shift = std::min(shift, 30); // coefficients have no more bits; a larger shift would be undefined
    for (std::int32_t &value : *coefficients) {
        const std::int32_t magnitude = value < 0 ? -value : value;
        if (magnitude >= std::int64_t(1) << (shift + 1)) // doubled
            value = value < 0 ? -(magnitude >> shift) : magnitude >> shift;
    }
}

} // namespace xrv
