#pragma once

#include "stream/streamsource.h"
#include "stream/values/sourcename.h"
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
    options.maxRetryAfter = 1500;
    options.firstBytes = 1000;
    options.wholeInMemory = 4 << 20;
    return options;
}

/// Opens a stream by its address as a text.
inline PLK::CError openStream(const std::string &address, const xrv::StreamOptions &options,
                              std::shared_ptr<xrv::ByteSource> *source)
{
    const xrv::SourceName name(address);
    return name.fault() ? name.fault() : xrv::StreamSource::open(name.address(), options, source);
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
