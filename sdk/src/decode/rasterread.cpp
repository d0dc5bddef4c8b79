#include "rasterread.h"

#include "decode/transform/planeops.h"

#include <unordered_map>

using PLK::CError;

namespace xrv {

RasterRead::RasterRead(const ReadRequest &request, const RasterInfo &raster, const DecodePlanner &planner)
    : asked(request)
    , raster(raster)
    , planner(planner)
    , plan(planner.plan(request))
    , policy(request.resilient)
    , decoded(plan.jobs.size())
{
}

CError RasterRead::loadIndexes(TileIndexStore &store)
{
    std::vector<std::uint32_t> tiles;
    for (const DecodeJob &job : plan.jobs)
        tiles.push_back(job.tile);
    if (CError error = store.load(tiles, asked.level, asked.cancel, &indexes))
        return error;
    // A tile may have a component transformation of its own.
    for (std::size_t i = 0; i < plan.jobs.size(); ++i)
        addTransformPartners(indexes[i]->style(), &plan.jobs[i].components);
    return {};
}

void RasterRead::keep(std::size_t job, Plane plane, int averagedLevels)
{
    const int component = plane.component;
    auto shared =
        std::make_shared<const Plane>(averagedLevels > 0 ? averaged(plane, averagedLevels) : std::move(plane));
    if (shared->rect.isEmpty())
        return;
    {
        std::lock_guard<std::mutex> lock(mutex);
        decoded[job].planes.push_back(shared);
    }
    if (asked.isKept)
        TileCache::instance().insert(planner.key(asked, plan.jobs[job].tile, component), std::move(shared));
}

CError RasterRead::settle(std::size_t job, CError error)
{
    std::lock_guard<std::mutex> lock(mutex);
    return policy.settle(std::move(error), &decoded[job].damage);
}

CError RasterRead::settleAsZeros(std::size_t job, const IntRect &levelRect, CError error)
{
    if (error.IsSuccess())
        return error;
    if (CError failed = settle(job, std::move(error)))
        return failed;
    for (const int c : plan.jobs[job].components)
        keep(job, makePlane(c, raster.components[c].fromCanvas(levelRect), raster.components[c].sampleType), 0);
    return {};
}

void RasterRead::noteDamage(std::size_t job, const std::string &sentence)
{
    std::lock_guard<std::mutex> lock(mutex);
    if (decoded[job].damage.empty())
        decoded[job].damage = sentence;
}

ReadResult RasterRead::result() const
{
    ReadResult result;
    for (const Decoded &one : decoded) {
        if (one.damage.empty() || result.damaged)
            continue;
        result.damaged = true;
        result.damage = one.damage;
    }
    // By component: of many, each has its share of the pieces only.
    std::unordered_map<int, std::vector<const Plane *>> pieces;
    for (const TileCache::PlanePtr &piece : plan.cached)
        pieces[piece->component].push_back(piece.get());
    for (const Decoded &one : decoded)
        for (const TileCache::PlanePtr &piece : one.planes)
            pieces[piece->component].push_back(piece.get());
    for (std::size_t i = 0; i < asked.components.size() && !asked.cancel.isRaised(); ++i) {
        const int c = asked.components[i];
        result.planes.push_back(makePlane(c, plan.wanted[i], raster.components[c].sampleType));
        for (const Plane *piece : pieces[c])
            if (!asked.cancel.isRaised())
                copyCells(*piece, &result.planes.back());
    }
    return result;
}

} // namespace xrv
