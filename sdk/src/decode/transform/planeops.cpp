#include "planeops.h"

#include "base/planerow.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace xrv {

namespace {

template <typename T> void averageRow(const Plane &plane, int levels, std::int64_t y, Plane *result)
{
    const std::int64_t step = std::int64_t(1) << levels;
    const std::int64_t y0 = y * step, y1 = std::min(plane.rect.y1, y0 + step);
    T *out = reinterpret_cast<T *>(result->bytes.data()) + (y - result->rect.y0) * result->rect.width();
    for (std::int64_t x = result->rect.x0; x < result->rect.x1; ++x) {
        const std::int64_t x0 = x * step, x1 = std::min(plane.rect.x1, x0 + step);
        std::int64_t sum = 0;
        for (std::int64_t v = y0; v < y1; ++v) {
            const T *row = plane.row<T>(v) - plane.rect.x0;
            for (std::int64_t u = x0; u < x1; ++u)
                sum += row[u];
        }
        const std::int64_t count = (x1 - x0) * (y1 - y0);
        const std::int64_t half = sum < 0 ? -(count / 2) : count / 2;
        *out++ = static_cast<T>((sum + half) / count);
    }
}

} // namespace

Plane makePlane(int component, const IntRect &rect, SampleType type)
{
    Plane plane;
    plane.component = component;
    plane.rect = rect;
    plane.type = type;
    if (!rect.isEmpty())
        plane.bytes.resize(static_cast<std::size_t>(rect.width() * rect.height()) * sampleSize(type));
    return plane;
}

Plane averaged(const Plane &plane, int levels)
{
    Plane result = makePlane(plane.component, levelRect(plane.rect, levels), plane.type);
    withSampleType(plane.type, [&](auto sample) {
        for (std::int64_t y = result.rect.y0; y < result.rect.y1; ++y)
            if constexpr (std::is_integral_v<decltype(sample)>) // codestreams have no others
                averageRow<decltype(sample)>(plane, levels, y, &result);
    });
    return result;
}

void copyCells(const Plane &source, Plane *target)
{
    const IntRect common = source.rect.intersected(target->rect);
    if (common.isEmpty() || source.type != target->type)
        return;
    const std::size_t size = sampleSize(source.type);
    const std::size_t length = static_cast<std::size_t>(common.width()) * size;
    for (std::int64_t y = common.y0; y < common.y1; ++y) {
        const std::int64_t from = (y - source.rect.y0) * source.rect.width() + (common.x0 - source.rect.x0);
        const std::int64_t to = (y - target->rect.y0) * target->rect.width() + (common.x0 - target->rect.x0);
        std::memcpy(target->bytes.data() + to * size, source.bytes.data() + from * size, length);
    }
}

} // namespace xrv
