#pragma once

#include "decode/rasterreader.h"
#include "view/lines/viewrequest.h"

#include <vector>

namespace xrv {

/// Level that shows \a request best: the coarsest one whose cells are at most 1.2 pixels wide and high. Finer ones
/// alias and cost four times as much, coarser ones blur.
///
/// Nearest-neighbour views that may take a coarser level do so up to 1.4 pixels: at such scales picking single cells of
/// the finer level would drop a quarter of its rows and columns, so that the filtered level loses nothing that was
/// there. A view that is squeezed along one axis more than eightfold gives up sharpness along the other, so that the
/// cells to decode stay in proportion to the pixels.
int chooseLevel(const RasterInfo &raster, const ViewRequest &request);

/// Every one of \a components has cells at \a level: those of narrow images may have none (ISO/IEC 15444-1 B.5, images
/// between two samples of the level).
bool isLevelUsable(const RasterInfo &raster, const std::vector<int> &components, int level);

} // namespace xrv
