#pragma once

#include "codestream/tileindex.h"

namespace xrv {

/// What a small codestream is to hold of a tile.
struct TileSelection
{
    std::vector<int> components; ///< ascending
    int discardedLevels = 0;     ///< highest resolutions left out; at most the decomposition levels of each component
    int layers = 0;              ///< 0 = all
    IntRect region;              ///< cells wanted, on the canvas of the level (canvas / 2^discardedLevels)
};

/// A codestream with one tile, made for a decoder.
struct TileCodestream
{
    Bytes bytes;
    int levelsToDiscard = 0;       ///< resolutions that the decoder still has to leave out
    int layersToDecode = 0;        ///< quality layers that the decoder has to keep to, 0 = all
    bool hasAllComponents = false; ///< components were not selected: the decoder has to
};

/// Makes a small valid codestream with the one tile of \a index at its own place on the canvas. Where the packets'
/// places are known it holds just the selected resolutions, layers, components and precincts, on a canvas made smaller
/// by the discarded levels, with empty packets in place of unwanted precincts; otherwise the whole tile as it is.
PLK::CError makeTileCodestream(ByteSource &source, const MainHeader &header, const TileIndex &index,
                               const TileSelection &selection, const CancelFlag &cancel, TileCodestream *codestream);

} // namespace xrv
