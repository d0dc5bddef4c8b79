#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// Makes small JPEG 2000 files in memory for tests, with OpenJPEG's encoder.
namespace jp2maker {

using FileBytes = std::vector<std::uint8_t>;

/// One component. A step of 2 is a component of half the resolution (XRsiz, YRsiz).
struct Component
{
    int bits = 8;
    bool isSigned = false;
    int stepX = 1, stepY = 1;
};

/// Cell of component \a component at column \a x and row \a y of the component's own grid, counted from its first cell.
using CellFunction = std::function<std::int32_t(int component, int x, int y)>;

struct Options
{
    int width = 64, height = 64;          ///< of the image area on the canvas
    int offsetX = 0, offsetY = 0;         ///< XOsiz, YOsiz
    int tileWidth = 0, tileHeight = 0;    ///< 0: one tile
    int tileOffsetX = 0, tileOffsetY = 0; ///< XTOsiz, YTOsiz
    std::vector<Component> components = std::vector<Component>(1);
    CellFunction cell; ///< without one: gradient()

    int levels = 3;                   ///< decomposition levels
    std::vector<float> layerRates{0}; ///< compression rate of every quality layer, first one the highest; 0 takes all
    const char *progression = "LRCP"; ///< LRCP, RLCP, RPCL, PCRL or CPRL
    std::vector<std::pair<int, int>> precincts; ///< highest resolution first, halved for those left; empty: none
    int codeBlockWidth = 64, codeBlockHeight = 64;
    int codeBlockStyle = 0;        ///< ISO/IEC 15444-1 table A.19
    int regionOfInterestShift = 0; ///< of component 0; the encoder takes all of it as the region
    bool reversible = true;
    bool componentTransform = false; ///< needs three components of the same kind
    bool plt = false, tlm = false, sop = false, eph = false;
    char tilePartsPer = 0; ///< 'R', 'L' or 'C': a tile-part for every resolution, layer or component
    std::string comment;

    bool bareCodestream = false; ///< without the boxes of a JP2 file
    int colourSpace = 0;         ///< OPJ_COLOR_SPACE; 0: sRGB from three components on, else greyscale
    bool opacityLast = false;    ///< the last component is an opacity channel (cdef box)
};

/// A slope that differs along rows, columns and components and reaches both ends of the component's range.
CellFunction gradient(const Options &options);

/// The file; throws std::runtime_error with the encoder's words when it cannot be made.
FileBytes make(const Options &options);

/// \a file with a box of \a type (four characters) right in front of its codestream box.
FileBytes withBox(const FileBytes &file, const std::string &type, const FileBytes &content);
inline FileBytes withBox(const FileBytes &file, const std::string &type, const std::string &content)
{
    return withBox(file, type, FileBytes(content.begin(), content.end()));
}

} // namespace jp2maker
