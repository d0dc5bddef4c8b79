#pragma once

#include "colour/bandmap.h"
#include "decode/rasterreader.h"

#include <memory>
#include <string>

namespace xrv {

class FaultLog;

/// Where a view gets its cells from.
struct ViewSource
{
    std::shared_ptr<const void> owner; ///< keeps reader and bandMap alive; may be null in tests
    RasterReader *reader = nullptr;
    const BandMap *bandMap = nullptr;
    bool canBeDithered = false;         ///< a lossily compressed XRV file
    std::string name{};                 ///< UTF-8, for messages
    std::shared_ptr<FaultLog> faults{}; ///< is told of damage and failures; may be null
};

} // namespace xrv
