// Entry for libFuzzer, and for the test that replays a small corpus through it: the boxes of XRV files.
// clang++ -std=c++17 -fsanitize=fuzzer,address,undefined with the sources of sdk/src/{io,container,codestream,geo,xrv}
// and the libraries that these need.

#include "codestream/packetindex.h"
#include "io/memorysource.h"
#include "xrv/xrvstructure.h"

#include <cstdlib>

namespace {

using namespace xrv;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

bool isInside(ByteRange range, std::uint64_t fileSize)
{
    return range.offset <= fileSize && range.length <= fileSize - range.offset;
}

void checkStatistics(const PLKFileStatistics &statistics)
{
    std::uint64_t buckets = 0;
    for (std::uint32_t band = 0; band < statistics.nBands; ++band) {
        require(statistics.pBandStats[band].nHistBucketCount > 0);
        buckets += statistics.pBandStats[band].nHistBucketCount;
    }
    require(buckets <= (std::uint64_t(4) << 20) + 256ull * statistics.nBands);
}

void checkIndex(const PacketIndex &index, std::uint64_t bytes)
{
    std::uint64_t total = 0;
    for (const PacketIndex::Part &part : index.parts()) {
        require(part.offset == total);
        total += index.length(part);
    }
    require(total == bytes);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t kMaxSize = 1 << 20;
    if (size > kMaxSize)
        return 0;
    MemorySource source(Bytes(data, data + size), "fuzz");
    XrvStructure structure;
    std::vector<std::string> warnings;
    if (readXrvStructure(source, &structure, &warnings))
        return 0;
    require(warnings.size() <= 64);
    require(isInside(structure.boxes.codestream, size));
    require(isInside(structure.statistics, size) && isInside(structure.packetIndex, size));
    require(structure.bands.empty() || structure.bands.size() == structure.info.bands);

    Bytes content;
    require(readXrvContent(source, structure.statistics, &content).IsSuccess());
    if (const StatisticsPtr statistics = parseStatistics(content, structure.info.bands))
        checkStatistics(*statistics);
    require(readXrvContent(source, structure.packetIndex, &content).IsSuccess());
    const std::uint64_t bytes = structure.boxes.codestream.length;
    if (const auto index = PacketIndex::parse(content, 16, bytes))
        checkIndex(*index, bytes);
    return 0;
}
