#pragma once

#include "base/cancelflag.h"
#include "colour/bandmap.h"
#include "decode/rasterreader.h"
#include "view/sampling/bytemap.h"

#include <xrv60/plktypes.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

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

/// Edges of a view in some plane: the outer edges of its first and last column and row. They may run backwards.
struct EdgeRect
{
    double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
    bool operator==(const EdgeRect &r) const
    {
        return left == r.left && top == r.top && right == r.right && bottom == r.bottom;
    }
};

/// A view as it was set. Made once, then never changed; only the flag may be raised.
struct ViewRequest
{
    std::vector<int> bands;      ///< as set: 1, 2, 3 or 4, may repeat
    std::vector<int> components; ///< to read for them, as BandMap::componentsFor() orders them; filled in by the engine
    int width = 0, height = 0;
    EdgeRect worldRect;
    EdgeRect datasetRect; ///< cells, (0, 0) at the corner of the image
    PLKResampleMethod resampleMethod = PLK_RESAMPLE_NEAREST;
    int qualityLayers = 0; ///< 0 = all
    bool resilient = true;
    bool textureDither = false;                           ///< where the source can be dithered
    bool coarserNearest = false;                          ///< nearest-neighbour views may take a coarser level
    std::vector<std::shared_ptr<const ByteMap>> byteMaps; ///< one per entry of bands
    std::vector<std::shared_ptr<const ByteMap>> autoscaledByteMaps; ///< the same with opacity scaled up to 0..255
    unsigned refreshTimeMs = 0;                                     ///< shortest time between two callbacks
    unsigned blockingTimeMs = 0; ///< longest time that setting a blocking view may wait for its first lines
    std::uint64_t generation = 0;
    CancelFlag cancel;
};

using RequestPtr = std::shared_ptr<const ViewRequest>;

} // namespace xrv
