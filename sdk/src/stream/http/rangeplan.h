#pragma once

#include "servertraits.h"

#include "stream/values/byterangeset.h"

#include <string>
#include <vector>

namespace xrv {

/// What one request asks for.
struct RangeGroup
{
    std::vector<ByteRange> ranges; ///< in file order, apart from each other
    bool isWholeFile = false;      ///< asked for without ranges
    std::uint64_t byteCount() const;
    /// As the request's Range header names them: "0-99,200-299"; empty for the whole file.
    std::string text() const;
};

/// Skipping fewer bytes than these costs more than reading them. In a multipart answer a part costs some 120 bytes of
/// its own; a request of its own costs a round trip, in which a link of 20 Mbit/s and 50 ms carries 125 KB, but shares
/// it with those beside it.
constexpr std::uint64_t kPartGap = 512;
constexpr std::uint64_t kRequestGap = 32768;
constexpr std::uint64_t kMultiplexedGap = 2048; ///< where a hundred others share the round trip

/// The one request for a file of \a length bytes to a server that does not know ranges.
RangeGroup wholeFile(std::uint64_t length);

/// The requests that bring \a lacking, given what the server is known to do. While that is unknown, one request finds
/// it out and the rest follow with the next plan. \a requestGap is for single ranges.
std::vector<RangeGroup> planRequests(const ByteRangeSet &lacking, ServerTraits::Answer severalRanges,
                                     std::uint64_t requestGap = kRequestGap);

} // namespace xrv
