// Makes a small geo-referenced sample image to look at.
//
// usage: makesample FILE [WIDTHxHEIGHT] [--sensor]
//
// With --sensor: four bands of 16 bits, the last one near infrared, instead of three colours of 8 bits.

#include "jp2writer.h"
#include "terrain.h"

#include <cstdio>
#include <cstring>

int main(int argc, char *argv[])
{
    const bool isSensor = argc > 2 && std::strcmp(argv[argc - 1], "--sensor") == 0;
    const int count = isSensor ? argc - 1 : argc;
    int width = 2048, height = 1536;
    const bool sizeIsGood = count < 3 || (std::sscanf(argv[2], "%dx%d", &width, &height) == 2 && width >= 64 &&
                                          height >= 64 && width <= 16384 && height <= 16384);
    if (count < 2 || count > 3 || !sizeIsGood) {
        std::fputs("usage: makesample FILE [WIDTHxHEIGHT] [--sensor]\n", stderr);
        return 2;
    }
    constexpr MapPlace kPlace{560000.0, 5180000.0, 10.0, 32632};
    const std::string problem =
        writeGeoJp2(argv[1], paintTerrain(width, height), kPlace, isSensor ? Bands::Sensor : Bands::Colours);
    if (!problem.empty()) {
        std::fprintf(stderr, "makesample: %s\n", problem.c_str());
        return 1;
    }
    std::printf("%s: %d x %d cells, 10 m each, EPSG 32632\n", argv[1], width, height);
    return 0;
}
