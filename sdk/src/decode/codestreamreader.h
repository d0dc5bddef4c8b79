#pragma once

#include "codeblockpath.h"
#include "decodeplanner.h"
#include "decodingrate.h"
#include "rasterreader.h"

#include "decode/tile/tileindexstore.h"

#include <deque>

namespace xrv {

/// RasterReader of a JPEG 2000 codestream: has planned what is missing in the tile cache, decoded and put together.
/// RasterReader::open() makes it.
class CodestreamReader : public RasterReader
{
public:
    CodestreamReader(const std::shared_ptr<ByteSource> &source, ByteRange codestream,
                     std::unique_ptr<MainHeader> header);
    ~CodestreamReader() override;

    const RasterInfo &info() const override { return raster; }
    const MainHeader &mainHeader() const override { return *header; }
    ReadCost cost(const ReadRequest &request) override;
    PLK::CError read(const ReadRequest &request, ReadResult *result) override;
    PLK::CError prefetch(const std::vector<ReadRequest> &requests) override;
    void dropCached() override;

private:
    PLK::CError decode(RasterRead *read);
    PLK::CError fillMissing(RasterRead *read);
    PLK::CError prefetchIndexes(const std::deque<RasterRead> &reads);

    std::shared_ptr<ByteSource> source;
    const std::unique_ptr<MainHeader> header;
    const RasterInfo raster;
    const std::uint64_t fileNumber;
    DecodingRate rate;
    DecodePlanner planner;
    TileIndexStore indexes;
    CodeBlockPath byCodeBlocks;
};

} // namespace xrv
