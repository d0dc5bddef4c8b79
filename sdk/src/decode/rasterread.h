#pragma once

#include "decodeplanner.h"

#include "decode/tile/damagepolicy.h"
#include "decode/tile/tileindexstore.h"

#include <mutex>
#include <string>
#include <vector>

namespace xrv {

/// One read on its way: what was asked for, the plan of it and, job by job, what has come out so far. The ways of
/// decoding hand in what they make from any thread.
class RasterRead
{
public:
    /// \a request and \a planner must outlive it.
    RasterRead(const ReadRequest &request, const RasterInfo &raster, const DecodePlanner &planner);

    const ReadRequest &request() const { return asked; }
    const CancelFlag &cancel() const { return asked.cancel; }
    const DamagePolicy &damagePolicy() const { return policy; }
    /// Quality layers to decode, 1 and up.
    int layers() const { return planner.layersOf(asked); }
    const std::vector<DecodeJob> &jobs() const { return plan.jobs; }
    double cellsToDecode() const { return plan.cellsToDecode(); }

    /// Gets the indexes of the tiles of all jobs. Errors are those of the store.
    PLK::CError loadIndexes(TileIndexStore &store);
    const TileIndexStore::TileIndexPtr &index(std::size_t job) const { return indexes[job]; }

    /// Takes a plane of \a job, with cells of 2^averagedLevels times the level's resolution, into the answer and the
    /// tile cache.
    void keep(std::size_t job, Plane plane, int averagedLevels);
    /// Decides what an error of a job's tile means: success with a note of the damage, or the end of the read.
    PLK::CError settle(std::size_t job, PLK::CError error);
    /// The same; where the read goes on, the cells of \a levelRect, a part of the job's, are 0.
    PLK::CError settleAsZeros(std::size_t job, const IntRect &levelRect, PLK::CError error);
    /// Notes damage in a job for which there is no note yet.
    void noteDamage(std::size_t job, const std::string &sentence);

    /// Puts the answer together; once the request's flag is raised planes may be missing.
    ReadResult result() const;

private:
    /// What came out of a job.
    struct Decoded
    {
        std::vector<TileCache::PlanePtr> planes;
        std::string damage;
    };

    const ReadRequest &asked;
    const RasterInfo &raster;
    const DecodePlanner &planner;
    DecodePlan plan;
    const DamagePolicy policy;
    std::vector<TileIndexStore::TileIndexPtr> indexes; ///< by job
    std::mutex mutex;                                  ///< guards what follows while jobs are decoded
    std::vector<Decoded> decoded;                      ///< by job
};

} // namespace xrv
