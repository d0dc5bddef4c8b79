// Makes a small geo-referenced sample image to look at.
//
// usage: makesample FILE [WIDTHxHEIGHT] [--sensor]
//
// With --sensor: four bands of 16 bits, the last one near infrared, instead of three colours of 8 bits.

#include "guarded.h"
#include "terrainsource.h"

#include "encode/imagewriter.h"

#include <cstdio>
#include <cstring>

namespace {

int run(int argc, char *argv[])
{
    constexpr const char *kUsage = "usage: makesample FILE [WIDTHxHEIGHT] [--sensor]\n";
    if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    const bool isSensor = argc > 2 && std::strcmp(argv[argc - 1], "--sensor") == 0;
    const int count = isSensor ? argc - 1 : argc;
    int width = 2048, height = 1536;
    const bool sizeIsGood = count < 3 || (std::sscanf(argv[2], "%dx%d", &width, &height) == 2 && width >= 64 &&
                                          height >= 64 && width <= 16384 && height <= 16384);
    if (count < 2 || count > 3 || !sizeIsGood || argv[1][0] == '-') {
        std::fputs(kUsage, stderr);
        return 2;
    }
    TerrainSource source(width, height, isSensor ? Bands::Sensor : Bands::Colours);
    xrv::WriteOptions options;
    options.kind = xrv::FileKind::GeoJp2;
    options.isLossless = false;
    options.rate = 12.0;
    if (const PLK::CError error = writeImage(source, options, argv[1])) {
        std::fprintf(stderr, "makesample: %s\n", error.GetErrorMessage());
        return 1;
    }
    std::printf("%s: %d x %d cells, 10 m each, EPSG 32632\n", argv[1], width, height);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    return guarded("makesample", [&] { return run(argc, argv); });
}
