#include "placement.h"

#include <algorithm>
#include <cmath>

namespace xrv {

Transform fromCentres(Transform centres)
{
    centres[0] -= (centres[1] + centres[2]) / 2;
    centres[3] -= (centres[4] + centres[5]) / 2;
    return centres;
}

bool isUsable(const Transform &t)
{
    const double area = t[1] * t[5] - t[2] * t[4];
    return std::all_of(t.begin(), t.end(), [](double v) { return std::isfinite(v); }) && std::isfinite(area) &&
           area != 0;
}

} // namespace xrv
