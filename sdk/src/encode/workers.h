#pragma once

#include <xrv60/plkerror.h>

#include <functional>

namespace xrv {

/// \a wanted, or as many threads as there are cores for 0.
unsigned threadCount(int wanted);

/// Calls \a work on \a threads threads, the calling one among them, over and over until it lowers \a goesOn or fails;
/// then the other threads end, too, after what they are at. Gives the first error, of what \a work throws as well.
PLK::CError runWorkers(unsigned threads, const std::function<PLK::CError(bool *goesOn)> &work);

} // namespace xrv
