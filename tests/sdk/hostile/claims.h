#pragma once

#include "data/boxbuilder.h"

#include <algorithm>

/// Bare codestreams (ISO/IEC 15444-1 annex A) that claim what they please: one component of 8 bits, or as many as
/// given, in reversible coding.
struct Claims
{
    std::uint32_t width = 64, height = 64;
    std::uint32_t tile = 0; ///< side, 0: one tile
    int components = 1, levels = 5, layers = 1, progression = 0;
    int codeBlock = 4;               ///< exponent of the side, less 2
    int precinct = -1;               ///< PPx and PPy of all resolutions; -1: none given
    boxbuilder::Bytes beforeTiles{}; ///< marker segments
    boxbuilder::Bytes packets{};     ///< of each tile that is there
    int tilesThere = 1, partsOfTile = 1;

    boxbuilder::Bytes make() const
    {
        using namespace boxbuilder;
        Bytes sizes, precincts;
        for (int c = 0; c < components; ++c)
            append(sizes, {7, 1, 1});
        for (int r = 0; r <= levels && precinct >= 0; ++r)
            precincts.push_back(static_cast<std::uint8_t>(precinct << 4 | precinct));
        const std::uint32_t across = tile ? tile : width, down = tile ? tile : height;
        Bytes file = join(
            {{0xff, 0x4f},
             segment(0x51, join({number(0, 2), number(width, 4), number(height, 4), number(0, 8), number(across, 4),
                                 number(down, 4), number(0, 8), number(std::uint64_t(components), 2), sizes})),
             segment(0x52, join({number(precinct >= 0, 1),
                                 number(std::uint64_t(progression), 1),
                                 number(std::uint64_t(layers), 2),
                                 number(0, 1),
                                 number(std::uint64_t(levels), 1),
                                 number(std::uint64_t(codeBlock), 1),
                                 number(std::uint64_t(codeBlock), 1),
                                 {0, 1},
                                 precincts})),
             segment(0x5c, join({{0x40}, Bytes(std::size_t(3 * levels + 1), 0x48)})),
             beforeTiles});
        for (int i = 0; i < tilesThere * partsOfTile; ++i) {
            const Bytes &data = i % partsOfTile == 0 ? packets : Bytes();
            append(file, join({{0xff, 0x90, 0, 10},
                               number(std::uint64_t(i / partsOfTile), 2),
                               number(14 + data.size(), 4),
                               number(std::uint64_t(i % partsOfTile), 1),
                               number(0, 1),
                               {0xff, 0x93},
                               data}));
        }
        append(file, {0xff, 0xd9});
        return file;
    }

    static boxbuilder::Bytes segment(std::uint8_t marker, const boxbuilder::Bytes &payload)
    {
        return boxbuilder::join({{0xff, marker}, boxbuilder::number(payload.size() + 2, 2), payload});
    }
};
