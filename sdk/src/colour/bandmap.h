#pragma once

#include "cells/cellkind.h"
#include "container/jp2structure.h"
#include "decode/rasterreader.h"

#include <xrv60/plktypes.h>

#include <memory>
#include <string>
#include <vector>

namespace xrv {

/// One band of the dataset, made from a component directly, through the palette or by colour conversion.
struct Band
{
    std::string description; ///< "Red", "Green", "Blue", "Greyscale", "AllOpacity" or "Band #n", n from 1
    std::uint8_t bits = 8;
    bool isSigned = false;
    CellKind kind = CellKind::Whole; ///< what rows of its cells hold
    int component = 0;
    int paletteColumn = -1; ///< -1: no palette
    bool isOpacity = false;
    bool isPremultiplied = false; ///< the opacity is multiplied into the colours already
};

/// Which bands a file has and how their cells come from the components' cells: component mapping and palette
/// (ISO/IEC 15444-1 I.5.3.4, I.5.3.5), channel definitions (I.5.3.6), and conversion of sYCC and its relatives, CIELab,
/// CMYK and embedded ICC profiles to sRGB. Bands stand in the order red, green, blue (or grey), others, opacity.
/// Immutable once made; any thread.
class BandMap
{
public:
    BandMap();
    ~BandMap();
    BandMap(BandMap &&) noexcept;
    BandMap &operator=(BandMap &&) noexcept;

    /// Never fails: what contradicts itself in the boxes is put into \a warnings, and the components stand as they are.
    static BandMap make(const RasterInfo &raster, const Jp2Structure &structure, std::vector<std::string> *warnings);

    const std::vector<Band> &bands() const;
    PLKColorSpace colourSpace() const;
    /// Type that holds every band.
    PLKCellType cellType() const;
    /// Cells go through a palette: interpolate after convertRow(), never before.
    bool hasPalette() const;
    /// The cells of \a band are those of its component, unchanged.
    bool isDirect(int band) const;
    /// Bands to show as red, green and blue, by their names or else the first three of colour, and as opacity, where
    /// there is one. Empty with fewer than three bands of colour.
    std::vector<int> rgbaBands() const;
    /// Components to read for \a bands, each once. Bands of a colour conversion need all components of it.
    std::vector<int> componentsFor(const std::vector<int> &bands) const;
    /// Makes \a width cells of each of \a bands from the rows of componentsFor(bands), in that order and all on the
    /// same grid. No row of the one is a row of the other. Cells are those of the bands' kinds.
    void convertRow(const std::vector<int> &bands, const std::int32_t *const *componentRows, int width,
                    std::int32_t *const *bandRows) const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace xrv
