#pragma once

#include "viewrequest.h"

#include "decode/rasterreader.h"

#include <vector>

namespace xrv {

/// Which cells a picture is made of. Pictures with equal keys can share them, whatever their transforms and methods.
struct CellKey
{
    EdgeRect datasetRect;
    int width = 0, height = 0;
    int level = 0;
    std::vector<int> components;
    int qualityLayers = 0;
    bool resilient = true;
    bool isDithered = false;
    bool operator==(const CellKey &k) const
    {
        return datasetRect == k.datasetRect && width == k.width && height == k.height && level == k.level &&
               components == k.components && qualityLayers == k.qualityLayers && resilient == k.resilient &&
               isDithered == k.isDithered;
    }
};

CellKey cellKey(const ViewSource &source, const ViewRequest &request, int level);
/// What to read for the lines [fromLine, toLine). The rectangle is empty where they lie outside the image.
ReadRequest readRequest(const ViewSource &source, const ViewRequest &request, int level, int fromLine, int toLine);

} // namespace xrv
