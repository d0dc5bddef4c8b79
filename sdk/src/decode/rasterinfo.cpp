#include "../codestream/canvas.h"
#include "rasterreader.h"

namespace xrv {

std::size_t sampleSize(SampleType type)
{
    switch (type) {
    case SampleType::UInt8:
    case SampleType::Int8:
        return 1;
    case SampleType::UInt16:
    case SampleType::Int16:
        return 2;
    default:
        return 4;
    }
}

SampleType sampleTypeFor(int bits, bool isSigned)
{
    if (bits <= 8)
        return isSigned ? SampleType::Int8 : SampleType::UInt8;
    if (bits <= 16)
        return isSigned ? SampleType::Int16 : SampleType::UInt16;
    return SampleType::Int32;
}

IntRect RasterInfo::levelRect(int component, int level) const
{
    MainHeader::Component steps;
    steps.stepX = static_cast<std::uint8_t>(components[component].stepX);
    steps.stepY = static_cast<std::uint8_t>(components[component].stepY);
    return xrv::levelRect(componentRect({canvasX0, canvasY0, canvasX1, canvasY1}, steps), level);
}

} // namespace xrv
