#pragma once

#include "rect.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace xrv {

/// How cells of a plane are stored.
enum class SampleType : std::uint8_t { UInt8, Int8, UInt16, Int16, Int32, UInt32, Int64, Float };
std::size_t sampleSize(SampleType type);
/// Of samples that have more bits, planes hold the highest of them.
constexpr int kMaxSampleBits = 32;
/// The type for components of \a bits, 1 to kMaxSampleBits.
SampleType sampleTypeFor(int bits, bool isSigned);

/// Cells of one component, or coefficients of one code-block.
struct Plane
{
    int component = 0;
    IntRect rect; ///< component level coordinates; covers the requested dataset rectangle and one cell around it
                  ///< where the image has one
    SampleType type = SampleType::UInt8;
    std::vector<std::uint8_t> bytes; ///< rows packed, rect.width() cells each
    template <typename T> const T *row(std::int64_t y) const
    {
        return reinterpret_cast<const T *>(bytes.data()) + (y - rect.y0) * rect.width();
    }
};

} // namespace xrv
