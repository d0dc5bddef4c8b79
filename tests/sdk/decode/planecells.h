#pragma once

#include "base/planerow.h"
#include "decode/rasterreader.h"
#include "peerdecoder.h"

#include <QString>

/// The cell at (x, y) of the component's grid at the plane's level.
inline std::int64_t cellAt(const xrv::Plane &plane, std::int64_t x, std::int64_t y)
{
    std::int64_t cell = 0;
    xrv::withRow(plane, y, [&](const auto *row) { cell = static_cast<std::int64_t>(row[x - plane.rect.x0]); });
    return cell;
}

/// How far two rows of numbers are apart.
struct Difference
{
    void add(std::int64_t actual, std::int64_t expected)
    {
        const std::int64_t difference = std::abs(actual - expected);
        largest = std::max(largest, difference);
        squares += double(difference) * double(difference);
        ++count;
    }
    double meanSquare() const { return count > 0 ? squares / double(count) : 0.0; }
    QByteArray text() const
    {
        return QStringLiteral("largest %1, mean square %2").arg(largest).arg(meanSquare()).toUtf8();
    }

    std::int64_t largest = 0, count = 0;
    double squares = 0.0;
};

/// The cells of \a plane against those of \a all, rows packed, which cover \a rect. The largest difference possible
/// where the plane has cells beyond it.
template <typename Cell>
Difference difference(const xrv::Plane &plane, const xrv::IntRect &rect, const std::vector<Cell> &all)
{
    Difference sum;
    if (!rect.contains(plane.rect) || all.size() != std::size_t(rect.width() * rect.height()))
        sum.add(0, INT64_MAX);
    else
        for (std::int64_t y = plane.rect.y0; y < plane.rect.y1; ++y)
            for (std::int64_t x = plane.rect.x0; x < plane.rect.x1; ++x)
                sum.add(cellAt(plane, x, y), all[std::size_t((y - rect.y0) * rect.width() + x - rect.x0)]);
    return sum;
}
