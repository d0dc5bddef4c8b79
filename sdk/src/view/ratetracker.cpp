#include "ratetracker.h"

#include <algorithm>

namespace xrv {

namespace {

constexpr double kTooShort = 2.0; ///< milliseconds; shorter reads tell more of the clock than of the decoder
constexpr double kNewest = 0.5;   ///< weight of the newest measurement

} // namespace

void RateTracker::learn(double estimated, double measured)
{
    if (estimated < kTooShort)
        return;
    const double seen = std::clamp(measured / estimated, 0.1, 20.0);
    factor = measuredOnce ? factor + (seen - factor) * kNewest : seen;
    measuredOnce = true;
}

} // namespace xrv
