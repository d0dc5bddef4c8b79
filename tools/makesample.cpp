// Makes a small geo-referenced sample image to look at.
//
// usage: makesample FILE [WIDTHxHEIGHT]

#include "jp2writer.h"
#include "terrain.h"

#include <cstdio>

int main(int argc, char *argv[])
{
    int width = 2048, height = 1536;
    const bool sizeIsGood = argc < 3 || (std::sscanf(argv[2], "%dx%d", &width, &height) == 2 && width >= 64 &&
                                         height >= 64 && width <= 16384 && height <= 16384);
    if (argc < 2 || argc > 3 || !sizeIsGood) {
        std::fputs("usage: makesample FILE [WIDTHxHEIGHT]\n", stderr);
        return 2;
    }
    constexpr MapPlace kPlace{560000.0, 5180000.0, 10.0, 32632};
    const std::string problem = writeGeoJp2(argv[1], paintTerrain(width, height), kPlace);
    if (!problem.empty()) {
        std::fprintf(stderr, "makesample: %s\n", problem.c_str());
        return 1;
    }
    std::printf("%s: %d x %d cells, 10 m each, EPSG 32632\n", argv[1], width, height);
    return 0;
}
