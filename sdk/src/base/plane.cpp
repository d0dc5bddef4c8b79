#include "plane.h"

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
    case SampleType::Int64:
        return 8;
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
    return bits <= 31 || isSigned ? SampleType::Int32 : SampleType::UInt32;
}

} // namespace xrv
