#pragma once

#include "colour/bandmap.h"
#include "decode/rasterreader.h"

namespace xrv {

/// Gives smooth areas of lossily compressed images back a grain: where a cell and its eight neighbours are within two
/// 256ths of the band's range of each other, it is changed by at most one 256th. The change is a function of the cell's
/// place, level and component alone, so that however a view is moved or decoded anew, its cells are the same. Opacity,
/// palettes and components of less than 8 bits are left alone.

/// What has to be read for the cells of \a request to be dithered: one cell more all around.
ReadRequest readForDither(const RasterInfo &raster, ReadRequest request);

/// Dithers \a plane of \a level, but for cells whose neighbours it lacks.
void ditherPlane(const RasterInfo &raster, const BandMap &bands, int level, Plane *plane);

} // namespace xrv
