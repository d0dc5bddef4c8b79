#include "cellgrid.h"

#include <algorithm>
#include <cmath>

namespace xrv {

namespace {

constexpr double kTieTolerance = 1e-4;   ///< of a cell; far above rounding errors, far below anything visible
constexpr double kMatchTolerance = 1e-3; ///< of a cell, over the whole view

} // namespace

CellGrid::CellGrid(const RasterInfo &raster, int component, int level, Axis axis)
{
    const ComponentInfo &info = raster.components[static_cast<std::size_t>(component)];
    const bool isX = axis == Axis::X;
    const std::uint32_t minStep = isX ? raster.minStepX : raster.minStepY;
    const std::uint32_t canvasStart = isX ? raster.canvasX0 : raster.canvasY0;
    const double step = static_cast<double>(isX ? info.stepX : info.stepY) / minStep;
    span = std::ldexp(step, level);
    origin = std::ceil(static_cast<double>(canvasStart) / minStep);
    const int codedLevel = std::clamp(level, 0, std::max(0, raster.codedLevels - 1));
    centreOffset = 0.5 + (span - std::ldexp(step, codedLevel)) / 2.0;
    const IntRect rect = raster.levelRect(component, level);
    first = isX ? rect.x0 : rect.y0;
    last = isX ? rect.x1 : rect.y1;
}

std::int64_t CellGrid::clamped(double cell) const
{
    return static_cast<std::int64_t>(std::clamp(cell, static_cast<double>(first), static_cast<double>(last - 1)));
}

std::int64_t CellGrid::nearest(double position) const
{
    const double tie = centreOffset < span / 2.0 ? -kTieTolerance : kTieTolerance;
    return clamped(std::floor((origin + position - centreOffset) / span + 0.5 + tie));
}

std::int64_t CellGrid::covering(double position) const
{
    return clamped(std::floor((origin + position) / span + kTieTolerance));
}

CellGrid::Tap CellGrid::between(double position) const
{
    const double cell = (origin + position - centreOffset) / span;
    const double whole = std::floor(cell);
    if (whole < static_cast<double>(first))
        return {first, 0.0};
    if (whole >= static_cast<double>(last - 1))
        return {last - 1, 0.0};
    return {static_cast<std::int64_t>(whole), cell - whole};
}

bool CellGrid::matches(const ViewAxis &axis) const
{
    const double drift = std::abs(axis.pitch() - span) * axis.pixels();
    const double phase = (origin + axis.firstEdge()) / span;
    return drift < kMatchTolerance * span && std::abs(phase - std::round(phase)) < kMatchTolerance;
}

} // namespace xrv
