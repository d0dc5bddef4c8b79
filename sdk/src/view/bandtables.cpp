#include "bandtables.h"

namespace xrv {

void BandTables::setRange(int index, double minimum, double maximum)
{
    maps.erase({index, false});
    maps.erase({index, true});
    ranges[index] = {minimum, maximum};
}

void BandTables::clear()
{
    ranges.clear();
    maps.clear();
}

std::shared_ptr<const ByteMap> BandTables::mapOf(int index, const Band &band, bool autoscaled)
{
    std::shared_ptr<const ByteMap> &map = maps[{index, autoscaled}];
    if (map)
        return map;
    const auto range = ranges.find(index);
    if (range != ranges.end())
        map = ByteMap::byRange(band.bits, band.isSigned, range->second.first, range->second.second, band.kind);
    else
        map = ByteMap::byDepth(band.bits, band.isSigned, autoscaled || !band.isOpacity, band.kind);
    return map;
}

} // namespace xrv
