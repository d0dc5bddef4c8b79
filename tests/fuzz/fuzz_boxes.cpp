// Entry for libFuzzer, and for the test that replays a small corpus through it:
// clang++ -std=c++17 -fsanitize=fuzzer,address,undefined with the sources of sdk/src/{io,container,colour} and lcms2.

#include "colour/bandmap.h"
#include "container/jp2structure.h"
#include "io/memorysource.h"

#include <cstdlib>
#include <numeric>

namespace {

using namespace xrv;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void checkStructure(const Jp2Structure &structure, std::uint64_t fileSize)
{
    require(structure.codestream.offset <= fileSize &&
            structure.codestream.length <= fileSize - structure.codestream.offset);
    require(structure.depths.size() <= 16384);
    if (structure.palette)
        require(structure.palette->values.size() == structure.palette->entries * structure.palette->columns.size());
    for (const BoxPlace &place : structure.xmlBoxes)
        require(place.content.end() <= fileSize);
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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t kMaxSize = 1 << 20;
    if (size > kMaxSize)
        return 0;
    MemorySource source(Bytes(data, data + size), "fuzz");
    Jp2Structure structure;
    std::vector<std::string> warnings;
    if (readJp2Structure(source, &structure, &warnings))
        return 0;
    require(warnings.size() <= 64);
    checkStructure(structure, size);
    checkBands(structure);
    return 0;
}
