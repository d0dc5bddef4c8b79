#include "wavelet.h"

#include "wrappingsum.h"

#include "codestream/canvas.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace xrv {

namespace {

/// Cells to either side that the longer (9-7) filter reaches. Where a region ends within the resolution, the line is
/// mirrored there though it goes on, which is wrong; each of the up to four lifting steps carries the fault one cell
/// further in, beginning with the last cell, so that with four cells around it the region has none of it.
constexpr std::int64_t kReach = 4;

// Lifting parameters of the 9-7 filter (ISO/IEC 15444-1 table F.4).
template <typename T> constexpr T kAlpha = T(-1.586134342059924);
template <typename T> constexpr T kBeta = T(-0.052980118572961);
template <typename T> constexpr T kGamma = T(0.882911075530934);
template <typename T> constexpr T kDelta = T(0.443506852043971);
template <typename T> constexpr T kK = T(1.230174104914001);

IntRect reached(const IntRect &resolutionRect, const IntRect &region)
{
    return IntRect{region.x0 - kReach, region.y0 - kReach, region.x1 + kReach, region.y1 + kReach}.intersected(
        resolutionRect);
}

// Rows of lifting steps: to[i] += f(a[i], b[i]).
template <typename T> void liftEven(T *to, const T *a, const T *b, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i)
        to[i] = differenceOf(to[i], sumOf(sumOf(a[i], b[i]), T(2)) >> 2);
}

template <typename T> void liftOdd(T *to, const T *a, const T *b, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i)
        to[i] = sumOf(to[i], sumOf(a[i], b[i]) >> 1);
}

template <typename T> void lift(T *to, const T *a, const T *b, T factor, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i)
        to[i] -= factor * (a[i] + b[i]);
}

template <typename T> void scale(T *to, T factor, std::int64_t count)
{
    for (std::int64_t i = 0; i < count; ++i)
        to[i] *= factor;
}

/// The cells of one line at even places (\a even, from index evenFirst on) and at odd places: which is which goes by
/// the place on the canvas, not in the line (F.3.3). A neighbour beyond the end is the one on the other side (F.3.7):
/// mirroring about the last cell comes to clamping the index.
template <typename T> struct Line
{
    T *even, *odd;
    std::int64_t evenFirst, evenCount, oddFirst, oddCount;

    /// Calls step(to, a, b, count) so that every even cell meets its odd neighbours.
    template <typename Step> void updateEven(Step step)
    {
        const std::int64_t shift = evenFirst - oddFirst; // odd neighbours of even[i]: i + shift - 1 and i + shift
        update(even, evenCount, odd, oddCount, shift - 1, step);
    }
    template <typename Step> void updateOdd(Step step)
    {
        const std::int64_t shift = oddFirst - evenFirst; // even neighbours of odd[i]: i + shift and i + shift + 1
        update(odd, oddCount, even, evenCount, shift, step);
    }

private:
    template <typename Step>
    static void update(T *to, std::int64_t toCount, const T *from, std::int64_t fromCount, std::int64_t shift,
                       Step step)
    {
        const auto clamped = [fromCount](std::int64_t i) { return std::clamp<std::int64_t>(i, 0, fromCount - 1); };
        std::int64_t i = 0;
        while (i < toCount && i + shift < 0) {
            step(to + i, from + clamped(i + shift), from + clamped(i + shift + 1), 1);
            ++i;
        }
        const std::int64_t inner = std::min(toCount, fromCount - 1 - shift);
        if (inner > i) {
            step(to + i, from + i + shift, from + i + shift + 1, inner - i);
            i = inner;
        }
        for (; i < toCount; ++i)
            step(to + i, from + clamped(i + shift), from + clamped(i + shift + 1), 1);
    }
};

template <typename T> void synthesizeLine(Line<T> line)
{
    if constexpr (std::is_integral_v<T>) {
        line.updateEven(liftEven<T>);
        line.updateOdd(liftOdd<T>);
    } else {
        const auto by = [](T factor) {
            return [factor](T *to, const T *a, const T *b, std::int64_t count) { lift(to, a, b, factor, count); };
        };
        scale(line.even, kK<T>, line.evenCount);
        scale(line.odd, T(1) / kK<T>, line.oddCount);
        line.updateEven(by(kDelta<T>));
        line.updateOdd(by(kGamma<T>));
        line.updateEven(by(kBeta<T>));
        line.updateOdd(by(kAlpha<T>));
    }
}

/// A line of one cell (F.3.6): as it is at an even place, half of it at an odd one.
template <typename T> T loneOdd(T value)
{
    return value / 2;
}

/// One level of synthesis of one region.
template <typename T> class LevelSynthesis
{
public:
    LevelSynthesis(const IntRect &resolutionRect, const IntRect &region, const Grid<T> *const bands[4], Grid<T> *result)
        : reach(reached(resolutionRect, region))
        , region(region)
        , bands(bands)
        , result(result)
    {
    }

    void run()
    {
        result->reset({region.x0, reach.y0, region.x1, reach.y1});
        even.resize(static_cast<std::size_t>(ceilShift(reach.x1, 1) - ceilShift(reach.x0, 1)));
        odd.resize(static_cast<std::size_t>((reach.x1 >> 1) - (reach.x0 >> 1)));
        for (std::int64_t y = reach.y0; y < reach.y1; ++y)
            synthesizeRow(y);
        synthesizeColumns();
    }

private:
    void synthesizeRow(std::int64_t y)
    {
        const bool isHigh = y & 1;
        const std::int64_t evenFirst = ceilShift(reach.x0, 1), oddFirst = reach.x0 >> 1;
        load(*bands[isHigh ? 2 : 0], y >> 1, evenFirst, &even);
        load(*bands[isHigh ? 3 : 1], y >> 1, oddFirst, &odd);
        T *out = result->row(y);
        if (reach.width() == 1) {
            if (!region.isEmpty())
                *out = even.empty() ? loneOdd(odd[0]) : even[0];
            return;
        }
        synthesizeLine(
            Line<T>{even.data(), odd.data(), evenFirst, std::int64_t(even.size()), oddFirst, std::int64_t(odd.size())});
        for (std::int64_t x = region.x0 + (region.x0 & 1); x < region.x1; x += 2)
            out[x - region.x0] = even[(x >> 1) - evenFirst];
        for (std::int64_t x = region.x0 + 1 - (region.x0 & 1); x < region.x1; x += 2)
            out[x - region.x0] = odd[(x >> 1) - oddFirst];
    }

    static void load(const Grid<T> &band, std::int64_t y, std::int64_t first, std::vector<T> *line)
    {
        if (!line->empty())
            std::memcpy(line->data(), band.row(y) + (first - band.rect.x0), line->size() * sizeof(T));
    }

    /// The lifting steps of the columns, row by row, which the compiler turns into vector instructions.
    void synthesizeColumns()
    {
        const std::int64_t width = region.width();
        if (reach.height() == 1) {
            if (reach.y0 & 1)
                for (std::int64_t x = 0; x < width; ++x)
                    result->row(reach.y0)[x] = loneOdd(result->row(reach.y0)[x]);
            return;
        }
        liftColumns(width);
    }

    void liftColumns(std::int64_t width)
    {
        if constexpr (std::is_integral_v<T>) {
            liftRows(0, [width](T *to, const T *a, const T *b) { liftEven(to, a, b, width); });
            liftRows(1, [width](T *to, const T *a, const T *b) { liftOdd(to, a, b, width); });
        } else {
            scaleAndLiftColumns(width);
        }
    }

    void scaleAndLiftColumns(std::int64_t width)
    {
        for (std::int64_t y = reach.y0; y < reach.y1; ++y)
            scale(result->row(y), y & 1 ? T(1) / kK<T> : kK<T>, width);
        const T factors[4] = {kDelta<T>, kGamma<T>, kBeta<T>, kAlpha<T>};
        for (int i = 0; i < 4; ++i)
            liftRows(i & 1,
                     [width, factor = factors[i]](T *to, const T *a, const T *b) { lift(to, a, b, factor, width); });
    }

    template <typename Step> void liftRows(int parity, Step step)
    {
        const auto mirrored = [this](std::int64_t y) {
            return y < reach.y0 ? 2 * reach.y0 - y : y >= reach.y1 ? 2 * (reach.y1 - 1) - y : y;
        };
        for (std::int64_t y = reach.y0 + ((reach.y0 & 1) != parity ? 1 : 0); y < reach.y1; y += 2)
            step(result->row(y), result->row(mirrored(y - 1)), result->row(mirrored(y + 1)));
    }

    const IntRect reach;
    const IntRect region;
    const Grid<T> *const *bands;
    Grid<T> *result;
    std::vector<T> even, odd;
};

} // namespace

IntRect neededBandRect(const IntRect &resolutionRect, const IntRect &region, int orientation)
{
    const IntRect r = reached(resolutionRect, region);
    IntRect band;
    band.x0 = orientation & 1 ? r.x0 >> 1 : ceilShift(r.x0, 1);
    band.x1 = orientation & 1 ? r.x1 >> 1 : ceilShift(r.x1, 1);
    band.y0 = orientation & 2 ? r.y0 >> 1 : ceilShift(r.y0, 1);
    band.y1 = orientation & 2 ? r.y1 >> 1 : ceilShift(r.y1, 1);
    return band;
}

template <typename T>
void synthesize(const IntRect &resolutionRect, const IntRect &region, const Grid<T> *const bands[4], Grid<T> *result)
{
    LevelSynthesis<T>(resolutionRect, region, bands, result).run();
}

template void synthesize<std::int32_t>(const IntRect &, const IntRect &, const Grid<std::int32_t> *const[4],
                                       Grid<std::int32_t> *);
template void synthesize<std::int64_t>(const IntRect &, const IntRect &, const Grid<std::int64_t> *const[4],
                                       Grid<std::int64_t> *);
template void synthesize<float>(const IntRect &, const IntRect &, const Grid<float> *const[4], Grid<float> *);
template void synthesize<double>(const IntRect &, const IntRect &, const Grid<double> *const[4], Grid<double> *);

} // namespace xrv
