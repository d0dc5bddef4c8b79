#pragma once

#include "codestream/mainheader.h"
#include "decode/rasterreader.h"

#include <algorithm>
#include <functional>
#include <mutex>

/// A raster whose cells are computed, and that keeps what was asked of it. A cell of a level is the full-resolution
/// cell at its place.
class FakeReader : public xrv::RasterReader
{
public:
    /// Cell at column x and row y of a component's own grid, canvas coordinates.
    using CellFunction = std::function<std::int64_t(int component, std::int64_t x, std::int64_t y)>;

    FakeReader(xrv::RasterInfo rasterInfo, CellFunction cellFunction)
        : raster(std::move(rasterInfo))
        , cell(std::move(cellFunction))
    {
    }

    const xrv::RasterInfo &info() const override { return raster; }
    const xrv::MainHeader &mainHeader() const override { return header; }
    xrv::ReadCost cost(const xrv::ReadRequest &) override { return {}; }
    void dropCached() override {}

    PLK::CError read(const xrv::ReadRequest &request, xrv::ReadResult *result) override
    {
        requests.push_back(request);
        std::size_t bytes = 0;
        for (int component : request.components) {
            result->planes.push_back(plane(request, component));
            bytes += result->planes.back().bytes.size();
        }
        mostBytes = std::max(mostBytes, bytes);
        return {};
    }

    /// All cells of a component at a level, row by row.
    std::vector<std::int64_t> cellsOf(int component, int level) const
    {
        std::vector<std::int64_t> cells;
        const xrv::IntRect rect = raster.levelRect(component, level);
        for (std::int64_t y = rect.y0; y < rect.y1; ++y)
            for (std::int64_t x = rect.x0; x < rect.x1; ++x)
                cells.push_back(cell(component, x << level, y << level));
        return cells;
    }

    std::vector<xrv::ReadRequest> requests;
    std::size_t mostBytes = 0; ///< of one answer

private:
    xrv::Plane plane(const xrv::ReadRequest &request, int component) const
    {
        const xrv::ComponentInfo &info = raster.components[static_cast<std::size_t>(component)];
        const xrv::IntRect &wanted = request.datasetRect;
        const auto scaled = [&](std::int64_t place, std::uint32_t origin, std::uint32_t minStep, std::uint32_t step) {
            return static_cast<double>(origin + place * minStep) / static_cast<double>(step << request.level);
        };
        xrv::Plane plane;
        plane.component = component;
        plane.type = info.sampleType;
        // With cells to spare around, as a reader that decodes in blocks gives them.
        plane.rect =
            xrv::IntRect{static_cast<std::int64_t>(scaled(wanted.x0, raster.canvasX0, raster.minStepX, info.stepX)) - 2,
                         static_cast<std::int64_t>(scaled(wanted.y0, raster.canvasY0, raster.minStepY, info.stepY)) - 2,
                         static_cast<std::int64_t>(scaled(wanted.x1, raster.canvasX0, raster.minStepX, info.stepX)) + 3,
                         static_cast<std::int64_t>(scaled(wanted.y1, raster.canvasY0, raster.minStepY, info.stepY)) + 3}
                .intersected(raster.levelRect(component, request.level));
        for (std::int64_t y = plane.rect.y0; y < plane.rect.y1; ++y)
            for (std::int64_t x = plane.rect.x0; x < plane.rect.x1; ++x) {
                const std::int64_t value = cell(component, x << request.level, y << request.level);
                for (std::size_t i = 0; i < xrv::sampleSize(info.sampleType); ++i) // little-endian hosts only
                    plane.bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
            }
        return plane;
    }

    const xrv::RasterInfo raster;
    const CellFunction cell;
    const xrv::MainHeader header;
};
