#pragma once

#include "base/cancelflag.h"

#include <atomic>
#include <cstdint>

namespace xrv {

/// What the thread that opens a file shares with those that wait for it.
struct OpenWatch
{
    CancelFlag cancel;
    // Of a file that its server gives as a whole only; see PLK::COpenControl.
    std::atomic<std::uint64_t> received{0}, expected{0};
};

} // namespace xrv
