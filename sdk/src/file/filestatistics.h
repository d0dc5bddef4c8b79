#pragma once

#include "backgroundcount.h"
#include "fileparts.h"

#include "statistics/statistics.h"

#include <memory>
#include <mutex>
#include <string>

namespace xrv {

class FaultLog;

/// The statistics of one open file: those that it carries, else of all its cells, counted at once where these are few
/// and in the background where they are many, with an estimate until then. All of them are kept. Any thread; who asks
/// while another thread finds them waits, but never for the background.
class FileStatistics
{
public:
    /// \a source and \a parts are borrowed; \a faults is told of damage that is met on the way. \a shownName for
    /// messages.
    FileStatistics(ByteSource &source, const FileParts &parts, std::shared_ptr<FaultLog> faults, std::string shownName);
    /// Ends the count.
    ~FileStatistics();

    /// The best that there is in some tenths of a second: exact ones, else an estimate. May decode. Errors are those of
    /// the reader and the source.
    PLK::CError atHand(SharedStatistics *result);
    /// Those that the file carries, else what a small resolution level tells, which is enough for a picture's contrast.
    PLK::CError display(SharedStatistics *result);
    PLKStatisticsState state() const;

    /// Counts all cells in the background, unless that is done or under way.
    void startCount();
    BackgroundCount &count() { return background; }

private:
    PLK::CError find(SharedStatistics *kept, StatisticsKind kind, SharedStatistics *result);
    PLK::CError findStored();
    PLK::CError compute(StatisticsKind kind, const StatisticsControl &control, SharedStatistics *result);
    PLK::CError countAll(const CancelFlag &cancel, const std::function<void(int)> &progress);
    bool isCountedAtOnce() const;
    PLK::CError noMemory() const;
    SharedStatistics keptIn(const SharedStatistics &place) const;
    void keep(SharedStatistics *place, SharedStatistics statistics);

    ByteSource &source;
    const FileParts &parts;
    const std::shared_ptr<FaultLog> faults;
    const std::string name;
    std::mutex finding;         ///< holds off a second thread while one finds what is not there yet
    mutable std::mutex keeping; ///< guards the statistics
    SharedStatistics exact, estimate, shown;
    bool hasLookedForStored = false; ///< guarded by finding
    BackgroundCount background;      ///< last, so that it ends first
};

} // namespace xrv
