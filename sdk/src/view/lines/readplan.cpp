#include "readplan.h"

#include "view/sampling/viewaxis.h"

#include <algorithm>

namespace xrv {

CellKey cellKey(const ViewSource &source, const ViewRequest &request, int level)
{
    return {
        request.datasetRect, request.width,         request.height,    level,
        request.components,  request.qualityLayers, request.resilient, request.textureDither && source.canBeDithered};
}

ReadRequest readRequest(const ViewSource &source, const ViewRequest &request, int level, int fromLine, int toLine)
{
    ReadRequest read;
    read.level = level;
    read.components = request.components;
    read.qualityLayers = request.qualityLayers;
    read.resilient = request.resilient;
    read.cancel = request.cancel;
    const RasterInfo &raster = source.reader->info();
    const ViewAxis x(request.datasetRect.left, request.datasetRect.right, request.width, raster.width);
    const ViewAxis y(request.datasetRect.top, request.datasetRect.bottom, request.height, raster.height);
    const int first = std::max(fromLine, y.insideBegin()), last = std::min(toLine, y.insideEnd());
    if (first >= last || x.insideCount() == 0)
        return read;
    IntRect rect;
    x.cellsFor(x.insideBegin(), x.insideEnd(), &rect.x0, &rect.x1);
    y.cellsFor(first, last, &rect.y0, &rect.y1);
    read.datasetRect = rect.intersected({0, 0, raster.width, raster.height});
    return read;
}

} // namespace xrv
