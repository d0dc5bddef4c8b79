#pragma once

#include "fileparts.h"

#include "statistics/statistics.h"

#include <memory>
#include <mutex>
#include <string>

namespace xrv {

class FaultLog;

/// The statistics of one open file: those that it carries, else computed when they are first asked for, and kept. Any
/// thread; who asks while they are computed waits.
class FileStatistics
{
public:
    /// \a source and \a parts are borrowed; \a faults is told of damage that is met on the way. \a shownName for
    /// messages.
    FileStatistics(ByteSource &source, const FileParts &parts, std::shared_ptr<FaultLog> faults, std::string shownName);

    /// Of all bands, owned by this object; may decode. Errors are those of the reader and the source.
    PLK::CError full(const PLKFileStatistics **result);
    /// The same where the file carries them; else what a small resolution level tells, which is enough for a picture's
    /// contrast.
    PLK::CError display(const PLKFileStatistics **result);

private:
    PLK::CError find(StatisticsPtr *kept, StatisticsDetail detail, const PLKFileStatistics **result);
    PLK::CError readStored(StatisticsPtr *kept);
    PLK::CError compute(StatisticsPtr *kept, StatisticsDetail detail);

    ByteSource &source;
    const FileParts &parts;
    const std::shared_ptr<FaultLog> faults;
    const std::string name;
    std::mutex mutex; ///< guards the statistics, and holds off a second thread while one computes them
    StatisticsPtr fullStatistics, displayStatistics;
};

} // namespace xrv
