#pragma once

#include "stream/streamsource.h"
#include "stream/values/sourcename.h"
#include "webfile.h"

#include <QtGlobal>

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

/// Opens \a address; the test ends where that fails.
inline std::shared_ptr<xrv::ByteSource> opened(const std::string &address,
                                               const xrv::StreamOptions &options = quickOptions())
{
    std::shared_ptr<xrv::ByteSource> source;
    if (const PLK::CError error = openStream(address, options, &source))
        qFatal("%s", error.GetErrorMessage());
    return source;
}

/// The bytes of \a ranges are read, and are those of \a file.
inline bool readsRight(xrv::ByteSource &source, const WebFile &file, const std::vector<xrv::ByteRange> &ranges)
{
    std::vector<xrv::Bytes> out;
    return !source.read(ranges, {}, &out) && out == expectedBytes(file, ranges);
}

/// What reading \a ranges fails with; 0 where it does not.
inline int readError(xrv::ByteSource &source, const std::vector<xrv::ByteRange> &ranges,
                     const xrv::CancelFlag &cancel = {})
{
    std::vector<xrv::Bytes> out;
    return source.read(ranges, cancel, &out).GetErrorNumber();
}
