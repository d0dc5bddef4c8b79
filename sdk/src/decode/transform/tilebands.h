#pragma once

#include "base/plane.h"
#include "codestream/precinct.h"

#include <cstdint>
#include <vector>

namespace xrv {

/// Names a code-block of a tile.
struct CodeBlockName
{
    int component = 0;
    int resolution = 0; ///< 0 is the lowest
    std::int64_t precinct = 0;
    int band = 0;                ///< number in the precinct: 0 LL, or 0 HL, 1 LH, 2 HH
    std::uint32_t codeBlock = 0; ///< number in the precinct's part of the subband, row by row

    /// One number that tells it from all others of its component, never 0.
    std::uint64_t number() const
    {
        return std::uint64_t(resolution + 1) << 58 | std::uint64_t(band) << 56 |
               (std::uint64_t(precinct) & 0x3FFFFFFFull) << 26 | (codeBlock & 0x3FFFFFFu);
    }
};

/// A code-block with its place in its subband.
struct CodeBlockPlace
{
    CodeBlockName name;
    int orientation = 0;
    IntRect rect; ///< cells of the subband
};

/// The code-blocks on which \a region of one component depends: cells of the component with \a discarded resolutions
/// left out. \a tileComponent is the component's part of the tile at full resolution.
std::vector<CodeBlockPlace> codeBlocksFor(const IntRect &tileComponent, const ComponentStyle &style, int component,
                                          int discarded, const IntRect &region);

/// Code-blocks of one subband that meet \a band (cells of the subband). \a resolution as in CodeBlockName.
void appendCodeBlocks(const IntRect &tileComponent, const ComponentStyle &style, int component, int resolution,
                      int orientation, const IntRect &band, std::vector<CodeBlockPlace> *codeBlocks);

} // namespace xrv
