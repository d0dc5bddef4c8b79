#pragma once

#include <algorithm>
#include <cstdint>

namespace xrv {

/// Half-open rectangle [x0, x1) x [y0, y1) of whole cells.
struct IntRect
{
    std::int64_t x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    std::int64_t width() const { return x1 - x0; }
    std::int64_t height() const { return y1 - y0; }
    bool isEmpty() const { return x1 <= x0 || y1 <= y0; }
    bool contains(const IntRect &r) const { return r.x0 >= x0 && r.y0 >= y0 && r.x1 <= x1 && r.y1 <= y1; }
    IntRect intersected(const IntRect &r) const
    {
        return {std::max(x0, r.x0), std::max(y0, r.y0), std::min(x1, r.x1), std::min(y1, r.y1)};
    }
    bool operator==(const IntRect &r) const { return x0 == r.x0 && y0 == r.y0 && x1 == r.x1 && y1 == r.y1; }
};

inline std::int64_t areaOf(const IntRect &rect)
{
    return rect.isEmpty() ? 0 : rect.width() * rect.height();
}

/// \a a / \a b rounded up. \a a is not negative, \a b is positive.
inline std::int64_t ceilDiv(std::int64_t a, std::int64_t b)
{
    return (a + b - 1) / b;
}

/// \a a / 2^bits rounded up.
inline std::int64_t ceilShift(std::int64_t a, int bits)
{
    return (a + (std::int64_t(1) << bits) - 1) >> bits;
}

/// Cells of \a rect of which every \a stepX-th across and \a stepY-th down is left, counted from the origin
/// (ISO/IEC 15444-1 B-12).
inline IntRect everyNth(const IntRect &rect, std::int64_t stepX, std::int64_t stepY)
{
    return {ceilDiv(rect.x0, stepX), ceilDiv(rect.y0, stepY), ceilDiv(rect.x1, stepX), ceilDiv(rect.y1, stepY)};
}

/// The same with every 2^level-th (B-14).
inline IntRect levelRect(const IntRect &rect, int level)
{
    return {ceilShift(rect.x0, level), ceilShift(rect.y0, level), ceilShift(rect.x1, level), ceilShift(rect.y1, level)};
}

/// All coordinates times 2^bits.
inline IntRect scaledUp(const IntRect &rect, int bits)
{
    return {rect.x0 << bits, rect.y0 << bits, rect.x1 << bits, rect.y1 << bits};
}

} // namespace xrv
