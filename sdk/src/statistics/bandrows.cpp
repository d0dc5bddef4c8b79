#include "bandrows.h"

#include "base/planerow.h"
#include "cells/cellkind.h"
#include "log/faultlog.h"

#include <algorithm>
#include <unordered_map>

namespace xrv {

using PLK::CError;

namespace {

/// Nearest cell of \a plane for every cell [x0, x1) of row \a y of a grid that is as fine or finer: one of its cells is
/// \a stepX wide and \a stepY high, in cells of the plane.
void gatherRow(const Plane &plane, std::int64_t x0, std::int64_t x1, std::int64_t y, double stepX, double stepY,
               std::int32_t *target)
{
    const IntRect &rect = plane.rect;
    const auto row = std::clamp(static_cast<std::int64_t>(static_cast<double>(y) * stepY), rect.y0, rect.y1 - 1);
    withRow(plane, row, [&](const auto *cells) {
        for (std::int64_t x = x0; x < x1; ++x) {
            const auto column =
                std::clamp(static_cast<std::int64_t>(static_cast<double>(x) * stepX), rect.x0, rect.x1 - 1);
            *target++ = bitsOfCell(cells[column - rect.x0]);
        }
    });
}

} // namespace

BandRows::BandRows(RasterReader &rasterReader, const BandMap &bandMap, std::vector<int> groupOfBands,
                   FaultLog *faultLog)
    : reader(rasterReader)
    , map(bandMap)
    , bands(std::move(groupOfBands))
    , componentsToRead(map.componentsFor(bands))
    , faults(faultLog)
{
    for (int band : bands)
        if (!map.isDirect(band))
            converted.push_back(band);
    if (!converted.empty())
        convertedComponents = map.componentsFor(converted);
}

void BandRows::leaveOutHidden()
{
    const std::vector<Band> &all = map.bands();
    for (std::size_t i = 0; i < all.size(); ++i)
        if (all[i].isOpacity && !all[i].isSigned && all[i].kind == CellKind::Whole && map.isDirect(static_cast<int>(i)))
            opacity = static_cast<int>(i);
    if (opacity < 0)
        return;
    const int component = all[static_cast<std::size_t>(opacity)].component;
    if (std::find(componentsToRead.begin(), componentsToRead.end(), component) == componentsToRead.end())
        componentsToRead.push_back(component);
}

/// Null where nothing hides cells.
const Plane *BandRows::opacityPlane(const std::vector<Plane> &planes) const
{
    if (opacity < 0)
        return nullptr;
    const int component = map.bands()[static_cast<std::size_t>(opacity)].component;
    const auto found = std::find_if(planes.begin(), planes.end(),
                                    [component](const Plane &plane) { return plane.component == component; });
    return found == planes.end() || found->rect.isEmpty() ? nullptr : &*found;
}

template <typename Cell>
void BandRows::add(const Cell *cells, std::int64_t x, std::int64_t y, std::size_t count, const Plane *hiding, int level,
                   BandCounter *counter) const
{
    if (!hiding)
        return counter->add(cells, count);
    const int bits = map.bands()[static_cast<std::size_t>(opacity)].bits;
    const std::int64_t least = level > 0 ? (std::int64_t(1) << bits) - 1 : 1;
    withRow(*hiding, y, [&](const auto *row) {
        const auto isVisible = [&](std::size_t i) {
            return static_cast<std::int64_t>(row[static_cast<std::size_t>(x - hiding->rect.x0) + i]) >= least;
        };
        for (std::size_t i = 0; i < count;) {
            const std::size_t first = i;
            while (i < count && isVisible(i))
                ++i;
            if (i > first)
                counter->add(cells + first, i - first);
            while (i < count && !isVisible(i))
                ++i;
        }
    });
}

BandRows::Steps BandRows::stepsOf(int component) const
{
    const ComponentInfo &info = reader.info().components[static_cast<std::size_t>(component)];
    return {info.stepX, info.stepY};
}

BandRows::Steps BandRows::finestSteps(const std::vector<int> &components) const
{
    Steps finest = stepsOf(components.front());
    for (int component : components) {
        const Steps steps = stepsOf(component);
        finest = {std::min(finest.x, steps.x), std::min(finest.y, steps.y)};
    }
    return finest;
}

/// The cells at \a level of a component with \a steps that belong to \a window. Its edges are rounded up alike, so
/// windows that touch in the dataset touch here.
IntRect BandRows::coreRect(const IntRect &window, int level, Steps steps) const
{
    const RasterInfo &info = reader.info();
    const auto place = [level](std::int64_t cell, std::int64_t size, std::uint32_t begin, std::uint32_t end,
                               std::uint32_t minStep, std::uint32_t step) {
        const std::int64_t levelStep = std::int64_t(step) << level;
        if (cell <= 0)
            return ceilDiv(begin, levelStep);
        if (cell >= size)
            return ceilDiv(end, levelStep);
        return ceilDiv((ceilDiv(begin, minStep) + cell) * minStep, levelStep);
    };
    const auto placeX = [&](std::int64_t x) {
        return place(x, info.width, info.canvasX0, info.canvasX1, info.minStepX, steps.x);
    };
    const auto placeY = [&](std::int64_t y) {
        return place(y, info.height, info.canvasY0, info.canvasY1, info.minStepY, steps.y);
    };
    return {placeX(window.x0), placeY(window.y0), placeX(window.x1), placeY(window.y1)};
}

ReadRequest BandRows::requestFor(const IntRect &window, int level) const
{
    ReadRequest request = manner;
    request.datasetRect = window;
    request.level = level;
    request.components = componentsToRead;
    return request;
}

CError BandRows::prefetch(const std::vector<IntRect> &windows, int level) const
{
    std::vector<ReadRequest> requests;
    for (const IntRect &window : windows)
        requests.push_back(requestFor(window, level));
    return reader.prefetch(requests);
}

CError BandRows::read(const IntRect &window, int level, std::vector<BandCounter> *counters) const
{
    ReadResult result;
    if (CError error = reader.read(requestFor(window, level), &result))
        return error;
    if (result.damaged && faults)
        faults->cellsDamaged(result.damage);
    std::unordered_map<int, const Plane *> planeOf;
    for (const Plane &plane : result.planes)
        planeOf[plane.component] = &plane;
    const Plane *const hiding = opacityPlane(result.planes);
    for (std::size_t i = 0; i < bands.size() && !manner.cancel.isRaised(); ++i) {
        if (!map.isDirect(bands[i]))
            continue;
        const int component = map.bands()[static_cast<std::size_t>(bands[i])].component;
        if (const auto found = planeOf.find(component); found != planeOf.end())
            countDirect(*found->second, coreRect(window, level, stepsOf(component)),
                        bands[i] == opacity ? nullptr : hiding, level, &(*counters)[i]);
    }
    if (!converted.empty())
        countConverted(result.planes, window, level, counters);
    return {};
}

void BandRows::countDirect(const Plane &plane, const IntRect &core, const Plane *hiding, int level,
                           BandCounter *counter) const
{
    if (hiding && !(hiding->rect == plane.rect)) // on another grid
        hiding = nullptr;
    const IntRect own = core.intersected(plane.rect);
    if (own.isEmpty())
        return;
    for (std::int64_t y = own.y0; y < own.y1; ++y)
        withRow(plane, y, [&](const auto *cells) {
            add(cells + (own.x0 - plane.rect.x0), own.x0, y, static_cast<std::size_t>(own.width()), hiding, level,
                counter);
        });
}

void BandRows::countConverted(const std::vector<Plane> &planes, const IntRect &window, int level,
                              std::vector<BandCounter> *counters) const
{
    std::vector<const Plane *> sources;
    for (int component : convertedComponents)
        for (const Plane &plane : planes)
            if (plane.component == component && !plane.rect.isEmpty())
                sources.push_back(&plane);
    if (sources.size() != convertedComponents.size())
        return; // a component without cells: there is nothing to convert
    const Steps steps = finestSteps(convertedComponents);
    const IntRect core = coreRect(window, level, steps);
    if (core.isEmpty())
        return;
    const Plane *hiding = opacityPlane(planes);
    if (hiding && !hiding->rect.contains(core)) // on another grid
        hiding = nullptr;
    const auto width = static_cast<std::size_t>(core.width());
    std::vector<std::vector<std::int32_t>> from(sources.size(), std::vector<std::int32_t>(width));
    std::vector<std::vector<std::int32_t>> to(converted.size(), std::vector<std::int32_t>(width));
    std::vector<const std::int32_t *> fromRows;
    std::vector<std::int32_t *> toRows;
    for (const auto &row : from)
        fromRows.push_back(row.data());
    for (auto &row : to)
        toRows.push_back(row.data());

    for (std::int64_t y = core.y0; y < core.y1 && !manner.cancel.isRaised(); ++y) {
        for (std::size_t i = 0; i < sources.size(); ++i) {
            const Steps own = stepsOf(sources[i]->component);
            gatherRow(*sources[i], core.x0, core.x1, y, static_cast<double>(steps.x) / own.x,
                      static_cast<double>(steps.y) / own.y, from[i].data());
        }
        map.convertRow(converted, fromRows.data(), static_cast<int>(width), toRows.data());
        for (std::size_t i = 0, next = 0; i < bands.size(); ++i)
            if (!map.isDirect(bands[i]))
                add(to[next++].data(), core.x0, y, width, hiding, level, &(*counters)[i]);
    }
}

} // namespace xrv
