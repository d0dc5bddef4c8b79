#pragma once

#include "plkexport.h"
#include "plktypes.h"

/// Starts the SDK: decoding threads and the tile cache. Calls nest; views can be opened without it, then the first
/// one starts the SDK.
PLK_EXPORT void PLKInit();
/// Ends what PLKInit() started: empties the tile cache, closes the connections of streams. Views must be closed before.
PLK_EXPORT void PLKShutdown();
/// Version of this library, "6.0.0.1513".
PLK_EXPORT const char *PLKGetLibraryVersion();

/// Switches the stream client to WinHTTP where the platform has it; elsewhere the wish is logged and nothing changes.
PLK_EXPORT void PLKWinHttpSetUseWinHttp(int useWinHttp);
/// Folder of additional geodetic data (a proj.db of the caller's choice), local 8-bit encoding. Ignored where the
/// folder has none.
PLK_EXPORT void PLKSetGDTPath(const char *folder);

/// Release what CView handed out. Null is ignored.
PLK_EXPORT void PLKFreeStatistics(PLKFileStatistics *statistics);
PLK_EXPORT void PLKFreeRPCData(PLKRPCData *rpcData);
