#pragma once

#include "plkexport.h"

namespace PLK::API {

/// Linear map of a band to 8 bits: min becomes 0, max 255, what lies outside is clamped. With max not above min every
/// cell becomes 0, or 255 where it lies above min.
class PLK_EXPORT CMinMaxTransform
{
public:
    CMinMaxTransform() = default;
    CMinMaxTransform(double min, double max)
        : minimum(min)
        , maximum(max)
    {
    }
    double GetMin() const { return minimum; }
    double GetMax() const { return maximum; }

private:
    double minimum = 0.0;
    double maximum = 255.0;
};

} // namespace PLK::API
