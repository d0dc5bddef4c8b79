#include "decodeplanner.h"

#include "codestream/canvas.h"
#include "decode/transform/rectset.h"

#include <algorithm>

namespace xrv {

namespace {

/// What is decoded ends on this grid, so that small pans do not leave slivers.
constexpr std::int64_t kPieceGrid = 64;
/// Widened to kPieceGrid within \a bounds.
IntRect onGrid(const IntRect &rect, const IntRect &bounds)
{
    const auto down = [](std::int64_t v) { return v / kPieceGrid * kPieceGrid; };
    const auto up = [](std::int64_t v) { return (v + kPieceGrid - 1) / kPieceGrid * kPieceGrid; };
    return IntRect{down(rect.x0), down(rect.y0), up(rect.x1), up(rect.y1)}.intersected(bounds);
}

} // namespace

void addTransformPartners(const TileStyle &style, std::vector<int> *components)
{
    std::sort(components->begin(), components->end());
    if (style.multipleComponentTransform && style.components.size() >= 3 && components->front() <= 2)
        components->insert(components->begin(), {0, 1, 2});
    std::sort(components->begin(), components->end());
    components->erase(std::unique(components->begin(), components->end()), components->end());
}

double DecodePlan::cellsToDecode() const
{
    double cells = 0.0;
    for (const DecodeJob &job : jobs)
        cells += double(areaOf(job.levelRect)) * double(job.components.size());
    return cells;
}

IntRect DecodePlanner::wantedRect(const ReadRequest &request, int component) const
{
    const ComponentInfo &info = raster.components[component];
    const std::int64_t originX = ceilDiv(raster.canvasX0, raster.minStepX);
    const std::int64_t originY = ceilDiv(raster.canvasY0, raster.minStepY);
    const IntRect dataset = request.datasetRect.intersected({0, 0, raster.width, raster.height});
    if (dataset.isEmpty())
        return {};
    const std::int64_t stepX = std::int64_t(info.stepX) << request.level, stepY = std::int64_t(info.stepY)
                                                                                  << request.level;
    const IntRect cells{(dataset.x0 + originX) * raster.minStepX / stepX - request.margin,
                        (dataset.y0 + originY) * raster.minStepY / stepY - request.margin,
                        ceilDiv((dataset.x1 + originX) * raster.minStepX, stepX) + request.margin,
                        ceilDiv((dataset.y1 + originY) * raster.minStepY, stepY) + request.margin};
    return cells.intersected(raster.levelRect(component, request.level));
}

int DecodePlanner::layersOf(const ReadRequest &request) const
{
    return request.qualityLayers > 0 ? std::min(request.qualityLayers, raster.qualityLayers) : raster.qualityLayers;
}

TileCache::Key DecodePlanner::key(const ReadRequest &request, std::uint32_t tile, int component) const
{
    TileCache::Key key;
    key.file = fileNumber;
    key.tile = tile;
    key.level = static_cast<std::uint8_t>(request.level);
    key.layers = static_cast<std::uint16_t>(layersOf(request));
    key.component = static_cast<std::uint16_t>(component);
    return key;
}

DecodePlan DecodePlanner::plan(const ReadRequest &request) const
{
    DecodePlan plan;
    std::vector<IntRect> canvasRects;
    for (const int c : request.components) {
        plan.wanted.push_back(wantedRect(request, c));
        if (!plan.wanted.back().isEmpty())
            canvasRects.push_back(scaledUp(raster.components[c].toCanvas(plan.wanted.back()), request.level));
    }
    if (canvasRects.empty())
        return plan;
    const IntRect canvas =
        boundingRect(canvasRects).intersected({raster.canvasX0, raster.canvasY0, raster.canvasX1, raster.canvasY1});
    const std::int64_t column0 = (canvas.x0 - header.tileX0) / header.tileWidth;
    const std::int64_t column1 = ceilDiv(canvas.x1 - header.tileX0, header.tileWidth);
    const std::int64_t row0 = (canvas.y0 - header.tileY0) / header.tileHeight;
    const std::int64_t row1 = ceilDiv(canvas.y1 - header.tileY0, header.tileHeight);
    for (std::int64_t row = row0; row < row1; ++row)
        for (std::int64_t column = column0; column < column1 && !request.cancel.isRaised(); ++column)
            planTile(request, static_cast<std::uint32_t>(row * header.tilesAcross + column), &plan);
    return plan;
}

void DecodePlanner::planTile(const ReadRequest &request, std::uint32_t tile, DecodePlan *plan) const
{
    const IntRect tileLevel = levelRect(tileRect(header, tile), request.level);
    std::vector<std::vector<IntRect>> missing;
    std::vector<int> missingComponents;
    bool isWanted = false;
    for (std::size_t i = 0; i < request.components.size(); ++i) {
        const int c = request.components[i];
        const IntRect wanted = plan->wanted[i].intersected(raster.components[c].fromCanvas(tileLevel));
        if (wanted.isEmpty())
            continue;
        isWanted = true;
        std::vector<IntRect> have;
        for (TileCache::PlanePtr &plane : TileCache::instance().find(key(request, tile, c))) {
            have.push_back(plane->rect);
            plan->cached.push_back(std::move(plane));
        }
        std::vector<IntRect> rest = subtract(wanted, have);
        if (rest.empty())
            continue;
        for (IntRect &rect : rest)
            rect = raster.components[c].toCanvas(rect);
        missingComponents.push_back(c);
        missing.push_back(std::move(rest));
    }
    plan->cacheTiles += isWanted ? 1 : 0;
    plan->cacheTilesReady += isWanted && missing.empty() ? 1 : 0;
    if (!missing.empty())
        addJobs(request, tile, missing, missingComponents, plan);
}

void DecodePlanner::addJobs(const ReadRequest &request, std::uint32_t tile,
                            const std::vector<std::vector<IntRect>> &missing, const std::vector<int> &components,
                            DecodePlan *plan) const
{
    const IntRect whole = levelRect(tileRect(header, tile), request.level);
    std::vector<int> all = components;
    addTransformPartners(header.style, &all);
    // As a rule all components lack the same, after a pan the two sides of an L.
    std::vector<IntRect> rects = missing.front();
    for (const std::vector<IntRect> &ofComponent : missing)
        if (!(ofComponent == rects)) {
            std::vector<IntRect> every;
            for (const std::vector<IntRect> &one : missing)
                every.insert(every.end(), one.begin(), one.end());
            rects = {boundingRect(every)};
            break;
        }
    for (const IntRect &rect : rects) {
        const IntRect widened = onGrid(rect, whole);
        if (!widened.isEmpty())
            plan->jobs.push_back({tile, widened, all});
    }
}

} // namespace xrv
