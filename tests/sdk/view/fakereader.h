#pragma once

#include "base/planerow.h"
#include "codestream/mainheader.h"
#include "colour/bandmap.h"
#include "decode/rasterreader.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <functional>
#include <mutex>
#include <vector>

/// A reader whose cells are made by a function and that does what a test tells it to on the way.
class FakeReader : public xrv::RasterReader
{
public:
    /// Components of \a bits bits, all of full resolution.
    FakeReader(std::uint32_t width, std::uint32_t height, int components = 1, std::uint8_t bits = 8,
               bool isSigned = false)
    {
        raster.width = raster.canvasX1 = raster.tileWidth = width;
        raster.height = raster.canvasY1 = raster.tileHeight = height;
        raster.tilesAcross = raster.tilesDown = 1;
        raster.levels = raster.codedLevels = 6;
        raster.components.assign(static_cast<std::size_t>(components),
                                 {bits, isSigned, 1, 1, xrv::sampleTypeFor(bits, isSigned)});
    }

    /// Sets offsets and steps: the image covers the canvas from (x0, y0) to (x1, y1); the finest step of the components
    /// is that of the first one.
    void setCanvas(std::uint32_t x0, std::uint32_t y0, std::uint32_t x1, std::uint32_t y1)
    {
        const std::uint32_t stepX = raster.components[0].stepX, stepY = raster.components[0].stepY;
        raster.canvasX0 = x0;
        raster.canvasY0 = y0;
        raster.canvasX1 = x1;
        raster.canvasY1 = y1;
        raster.minStepX = stepX;
        raster.minStepY = stepY;
        raster.width = (x1 + stepX - 1) / stepX - (x0 + stepX - 1) / stepX;
        raster.height = (y1 + stepY - 1) / stepY - (y0 + stepY - 1) / stepY;
    }

    const xrv::RasterInfo &info() const override { return raster; }
    const xrv::MainHeader &mainHeader() const override { return header; }
    void dropCached() override {}

    xrv::ReadCost cost(const xrv::ReadRequest &request) override
    {
        return costOf ? costOf(request) : xrv::ReadCost{1, 0, 0.0};
    }

    PLK::CError read(const xrv::ReadRequest &request, xrv::ReadResult *result) override
    {
        ++reads;
        if (onRead) {
            if (PLK::CError error = onRead(request))
                return error;
        }
        for (int component : request.components)
            result->planes.push_back(makePlane(request, component));
        return {};
    }

    xrv::RasterInfo raster;
    std::function<std::int64_t(int component, int level, std::int64_t u, std::int64_t v)> cell =
        [](int, int, std::int64_t u, std::int64_t v) { return u + v; };
    std::function<xrv::ReadCost(const xrv::ReadRequest &)> costOf;
    std::function<PLK::CError(const xrv::ReadRequest &)> onRead;
    std::atomic<int> reads{0};
    std::atomic<std::size_t> largestAnswer{0}; ///< bytes of planes

private:
    static std::int64_t floorDiv(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

    xrv::Plane makePlane(const xrv::ReadRequest &request, int number)
    {
        const xrv::ComponentInfo &component = raster.components[static_cast<std::size_t>(number)];
        const std::int64_t originX = (raster.canvasX0 + raster.minStepX - 1) / raster.minStepX;
        const std::int64_t originY = (raster.canvasY0 + raster.minStepY - 1) / raster.minStepY;
        const std::int64_t spanX = std::int64_t(component.stepX) << request.level;
        const std::int64_t spanY = std::int64_t(component.stepY) << request.level;
        const xrv::IntRect &r = request.datasetRect;
        xrv::Plane plane;
        plane.component = number;
        plane.type = component.sampleType;
        plane.rect = {floorDiv((r.x0 + originX) * raster.minStepX, spanX) - 1,
                      floorDiv((r.y0 + originY) * raster.minStepY, spanY) - 1,
                      floorDiv((r.x1 + originX) * raster.minStepX - 1, spanX) + 2,
                      floorDiv((r.y1 + originY) * raster.minStepY - 1, spanY) + 2};
        plane.rect = plane.rect.intersected(raster.levelRect(number, request.level));
        if (plane.rect.isEmpty())
            return plane;
        const std::size_t size = xrv::sampleSize(plane.type);
        plane.bytes.resize(static_cast<std::size_t>(plane.rect.width() * plane.rect.height()) * size);
        std::uint8_t *to = plane.bytes.data();
        for (std::int64_t v = plane.rect.y0; v < plane.rect.y1; ++v)
            for (std::int64_t u = plane.rect.x0; u < plane.rect.x1; ++u, to += size)
                store(cell(number, request.level, u, v), plane.type, to);
        largestAnswer = std::max<std::size_t>(largestAnswer, plane.bytes.size() * request.components.size());
        return plane;
    }

    static void store(std::int64_t value, xrv::SampleType type, std::uint8_t *to)
    {
        xrv::withSampleType(type, [&](auto typed) {
            typed = static_cast<decltype(typed)>(value);
            std::memcpy(to, &typed, sizeof typed);
        });
    }

    xrv::MainHeader header;
};
