// Entry for libFuzzer, and for the test that replays a small corpus through it: the boxes of all kinds of files.
// clang++ -std=c++17 -fsanitize=fuzzer,address,undefined with the sources of
// sdk/src/{base,log,io,container,codestream,decode,colour,statistics,geo,xrv} and the libraries that these need.

#include "codestream/packetindex.h"
#include "colour/bandmap.h"
#include "io/memorysource.h"
#include "xrv/xrvstructure.h"

#include <cstdlib>
#include <numeric>

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

void checkStructure(const Jp2Structure &structure, std::uint64_t fileSize)
{
    require(isInside(structure.codestream, fileSize));
    require(structure.depths.size() <= 16384);
    if (structure.palette)
        require(structure.palette->values.size() == structure.palette->entries * structure.palette->columns.size());
    for (const BoxPlace &place : structure.xmlBoxes)
        require(isInside(place.content, fileSize));
}

RasterInfo rasterOf(const Jp2Structure &structure)
{
    RasterInfo raster;
    for (const BitDepth &depth : structure.depths) {
        ComponentInfo component;
        component.bits = depth.bits;
        component.isSigned = depth.isSigned;
        raster.components.push_back(component);
    }
    if (raster.components.empty())
        raster.components.resize(3);
    return raster;
}

// The bands of the file, and a few cells through all of them: smallest, largest and out of range.
void checkBands(const Jp2Structure &structure)
{
    const BandMap map = BandMap::make(rasterOf(structure), structure, nullptr);
    require(!map.bands().empty());
    std::vector<int> bands(map.bands().size());
    std::iota(bands.begin(), bands.end(), 0);
    const std::vector<std::int32_t> cells{0, 1, -1, 255, 65535, INT32_MAX, INT32_MIN};
    const std::vector<const std::int32_t *> in(map.componentsFor(bands).size(), cells.data());
    std::vector<std::vector<std::int32_t>> made(bands.size(), std::vector<std::int32_t>(cells.size()));
    std::vector<std::int32_t *> out;
    for (auto &row : made)
        out.push_back(row.data());
    map.convertRow(bands, in.data(), static_cast<int>(cells.size()), out.data());
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

void checkRecords(ByteSource &source, const XrvStructure &structure)
{
    require(isInside(structure.statistics, source.size()) && isInside(structure.packetIndex, source.size()));
    require(structure.bands.empty() || structure.bands.size() == structure.info.bands);
    Bytes content;
    require(readXrvContent(source, structure.statistics, &content).IsSuccess());
    if (const StatisticsPtr statistics = parseStatistics(content, structure.info.bands))
        checkStatistics(*statistics);
    require(readXrvContent(source, structure.packetIndex, &content).IsSuccess());
    const std::uint64_t bytes = structure.boxes.codestream.length;
    if (const auto index = PacketIndex::parse(content, 16, bytes))
        checkIndex(*index, bytes);
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
    const bool isXrvFile = readXrvStructure(source, &structure, &warnings).IsSuccess();
    if (!isXrvFile) {
        warnings.clear();
        structure.boxes = {};
        if (readJp2Structure(source, &structure.boxes, &warnings))
            return 0;
    }
    require(warnings.size() <= 64);
    checkStructure(structure.boxes, size);
    checkBands(structure.boxes);
    if (isXrvFile)
        checkRecords(source, structure);
    return 0;
}
