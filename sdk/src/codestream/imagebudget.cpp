#include "imagebudget.h"

#include "canvas.h"

#include <algorithm>
#include <numeric>

using PLK::CError;

namespace xrv {

namespace {

// Each limit is what any file may have, some hundred megabytes or a second's work at most, and what a byte is worth.

/// Resolutions of all components of all tiles: about 200 bytes each while all of the image is shown. A sound file has a
/// packet, and so a byte, for every one of them.
constexpr std::uint64_t kFreeResolutions = 1250000;
/// Those that progression order changes name, one by one: a nanosecond each.
constexpr std::uint64_t kFreeChanges = 1u << 26, kChangesPerByte = 64;
/// Code-blocks of the smallest resolution: about a microsecond each, also those without data.
constexpr std::uint64_t kFreeCodeBlocks = 1u << 21, kCodeBlocksPerByte = 4;
/// Pieces of the smallest resolution that have data, for which three bytes are the least: a third of a millisecond
/// each. What is worth looking at takes far more bytes.
constexpr std::uint64_t kCellsPerPiece = 1u << 17, kLeastBytesPerPiece = 3;
constexpr std::uint64_t kFreePieces = 8192, kBytesPerPiece = 64;
constexpr std::uint64_t kLeastBytesPerTile = 14; ///< SOT marker segment and SOD marker
/// What packet headers tell of code-blocks, bytes.
constexpr std::uint64_t kFreeHeaderMemory = std::uint64_t(256) << 20, kHeaderMemoryPerByte = 16;
/// Components in the first picture.
constexpr std::uint64_t kShownComponents = 3;

std::uint64_t resolutionsOfTile(const TileStyle &style)
{
    return std::accumulate(style.components.begin(), style.components.end(), std::uint64_t(0),
                           [](std::uint64_t sum, const ComponentStyle &component) {
                               return sum + static_cast<std::uint64_t>(component.decompositionLevels) + 1;
                           });
}

/// Cells of a component in the smallest resolution that all components have. That is what all larger views of the
/// image are averaged from.
std::uint64_t smallestCells(const MainHeader &header, int levels, std::size_t component)
{
    const IntRect rect = componentRect({header.x0, header.y0, header.x1, header.y1}, header.components[component]);
    const IntRect smallest = levelRect(rect, levels);
    return static_cast<std::uint64_t>(smallest.width()) * static_cast<std::uint64_t>(smallest.height());
}

/// At least: without those that the edges of tiles and precincts cut, nor those of resolutions below.
std::uint64_t smallestCodeBlocks(const MainHeader &header, int levels, std::size_t c)
{
    const ComponentStyle &style = header.style.components[c];
    const int resolution = style.decompositionLevels - levels;
    const int halved = resolution > 0 ? 1 : 0;
    const int width = std::min(style.codeBlockWidthExponent, style.precinctWidthExponent(resolution) - halved);
    const int height = std::min(style.codeBlockHeightExponent, style.precinctHeightExponent(resolution) - halved);
    return smallestCells(header, levels, c) >> (width + height);
}

} // namespace

CError ImageBudget::tooMany(std::uint64_t count, const std::string &what) const
{
    return {PLK_ERR_MALFORMED, "The JPEG 2000 codestream is damaged: its " + std::to_string(bytes) +
                                   " bytes cannot hold the " + std::to_string(count) + ' ' + what + '.'};
}

CError ImageBudget::admit(const MainHeader &header) const
{
    if (CError error = admitTiles(header))
        return error;
    return admitFirstPicture(header);
}

CError ImageBudget::admitTiles(const MainHeader &header) const
{
    const std::uint64_t tiles = header.tileCount();
    const std::uint64_t resolutions = tiles * resolutionsOfTile(header.style);
    if (resolutions > kFreeResolutions + bytes)
        return tooMany(resolutions, "resolutions of components that its " + std::to_string(tiles) + " tiles claim");
    const std::uint64_t changes = header.style.progressionChanges.size();
    if (resolutions * changes > kFreeChanges + kChangesPerByte * bytes)
        return tooMany(changes, "progression order changes that its header claims");
    return {};
}

CError ImageBudget::admitFirstPicture(const MainHeader &header) const
{
    const int levels = header.style.minDecompositionLevels();
    std::uint64_t codeBlocks = 0, cells = 0;
    for (std::size_t c = 0; c < header.components.size(); ++c) {
        codeBlocks = std::max(codeBlocks, smallestCodeBlocks(header, levels, c));
        cells = std::max(cells, smallestCells(header, levels, c));
    }
    const std::uint64_t shown = std::min<std::uint64_t>(kShownComponents, header.components.size());
    if (codeBlocks > (kFreeCodeBlocks + kCodeBlocksPerByte * bytes) / shown)
        return tooMany(codeBlocks, "code-blocks that its smallest resolution claims");
    const std::uint64_t data = bytes - std::min(bytes, header.tileCount() * kLeastBytesPerTile);
    const std::uint64_t pieces = std::min(cells / kCellsPerPiece * shown, data / kLeastBytesPerPiece);
    if (pieces > kFreePieces + bytes / kBytesPerPiece)
        return tooMany(cells, "cells that its smallest resolution claims");
    return {};
}

CError ImageBudget::admitPacketHeaders(std::uint64_t memory) const
{
    const std::uint64_t limit = kFreeHeaderMemory + kHeaderMemoryPerByte * bytes;
    if (memory <= limit)
        return {};
    return {PLK_ERR_UNSUPPORTED, "The packet headers of a tile of " + std::to_string(bytes) + " bytes take more than " +
                                     std::to_string(limit >> 20) + " MB of memory."};
}

} // namespace xrv
