#pragma once

#include "stream/streamsource.h"
#include "webfile.h"

#include <memory>
#include <string>
#include <vector>

/// Time-outs short enough for tests, no cache on disk.
inline xrv::StreamOptions quickOptions()
{
    xrv::StreamOptions options;
    options.connectTimeout = 2000;
    options.stallTimeout = 500;
    options.firstBackOff = 10;
    options.longestRetryAfter = 1500;
    options.firstBytes = 1000;
    options.wholeInMemory = 4 << 20;
    return options;
}

/// The bytes of \a ranges as \a file has them.
inline std::vector<xrv::Bytes> expectedBytes(const WebFile &file, const std::vector<xrv::ByteRange> &ranges)
{
    std::vector<xrv::Bytes> expected;
    for (const xrv::ByteRange &range : ranges) {
        const auto begin = file.bytes.begin() + static_cast<std::ptrdiff_t>(range.offset);
        expected.emplace_back(begin, begin + static_cast<std::ptrdiff_t>(range.length));
    }
    return expected;
}
