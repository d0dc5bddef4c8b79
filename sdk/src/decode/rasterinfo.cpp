#include "rasterreader.h"

namespace xrv {

IntRect RasterInfo::levelRect(int component, int level) const
{
    const ComponentInfo &info = components[component];
    return xrv::levelRect(everyNth({canvasX0, canvasY0, canvasX1, canvasY1}, info.stepX, info.stepY), level);
}

} // namespace xrv
