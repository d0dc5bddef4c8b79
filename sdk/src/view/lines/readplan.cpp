#include "readplan.h"

#include "view/sampling/viewaxis.h"

#include <algorithm>

namespace xrv {

std::vector<int> distinctBands(const std::vector<int> &bands)
{
    std::vector<int> distinct;
    for (int band : bands)
        if (std::find(distinct.begin(), distinct.end(), band) == distinct.end())
            distinct.push_back(band);
    return distinct;
}

std::vector<int> componentsFor(const ViewSource &source, const ViewRequest &request)
{
    return source.bandMap->componentsFor(distinctBands(request.bands));
}

CellKey cellKey(const ViewSource &source, const ViewRequest &request, int level)
{
    return {request.datasetRect,
            request.width,
            request.height,
            level,
            componentsFor(source, request),
            request.qualityLayers,
            request.resilient,
            request.textureDither && source.canBeDithered};
}

ReadRequest readRequest(const ViewSource &source, const ViewRequest &request, int level, int fromLine, int toLine)
{
    ReadRequest read;
    read.level = level;
    read.components = componentsFor(source, request);
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
