#include "filestatistics.h"

#include "base/utf8.h"
#include "config/configuration.h"
#include "log/faultlog.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

#include <chrono>
#include <new>

namespace xrv {

using PLK::CError;

namespace {

/// Cells of all bands that are counted while somebody waits: about a fifth of a second on two cores, well below half a
/// second on one.
constexpr double kCellsCountedAtOnce = 4e6;

} // namespace

FileStatistics::FileStatistics(ByteSource &source, const FileParts &parts, std::shared_ptr<FaultLog> faults,
                               std::string shownName)
    : source(source)
    , parts(parts)
    , faults(std::move(faults))
    , name(std::move(shownName))
    , background([this](const CancelFlag &cancel, const auto &progress) { return countAll(cancel, progress); })
{
}

FileStatistics::~FileStatistics() = default;

CError FileStatistics::atHand(SharedStatistics *result)
{
    if ((*result = keptIn(exact)))
        return {};
    const std::lock_guard<std::mutex> lock(finding);
    if (CError error = findStored())
        return error;
    if ((*result = keptIn(exact)))
        return {};
    return isCountedAtOnce() ? find(&exact, StatisticsKind::Exact, result)
                             : find(&estimate, StatisticsKind::Estimate, result);
}

CError FileStatistics::display(SharedStatistics *result)
{
    const std::lock_guard<std::mutex> lock(finding);
    if (CError error = findStored())
        return error;
    // Counted ones would change a picture's contrast, depending on who asked for what before.
    return find(&shown, StatisticsKind::Display, result);
}

PLKStatisticsState FileStatistics::state() const
{
    if (keptIn(exact))
        return PLK_STATISTICS_EXACT;
    if (background.isRunning())
        return PLK_STATISTICS_COUNTING;
    return keptIn(estimate) ? PLK_STATISTICS_ESTIMATED : PLK_STATISTICS_UNKNOWN;
}

void FileStatistics::startCount()
{
    if (!keptIn(exact))
        background.start();
}

/// Distant files answer at their own pace, so they are never counted while somebody waits.
bool FileStatistics::isCountedAtOnce() const
{
    const RasterInfo &info = parts.reader->info();
    return !source.isRemote() &&
           double(info.width) * info.height * double(parts.bandMap.bands().size()) <= kCellsCountedAtOnce;
}

CError FileStatistics::find(SharedStatistics *kept, StatisticsKind kind, SharedStatistics *result)
{
    if ((*result = keptIn(*kept)))
        return {};
    StatisticsControl control;
    if (CError error = compute(kind, control, result))
        return error;
    keep(kept, *result);
    return {};
}

/// Damaged ones are none: they are then computed.
CError FileStatistics::findStored()
{
    if (hasLookedForStored || !parts.xrv)
        return {};
    Bytes content;
    if (CError error = readXrvContent(source, parts.xrv->statistics, &content))
        return error;
    hasLookedForStored = true;
    SharedStatistics stored;
    try {
        stored = parseStatistics(content, parts.bandCount());
    } catch (const std::bad_alloc &) {
        return noMemory();
    }
    if (stored) {
        keep(&exact, stored);
        keep(&shown, stored);
    } else if (!content.empty() && logEnabled(PLK_LOG_WARNING)) {
        log(PLK_LOG_WARNING, wideFromUtf8("\"" + name + "\": The statistics are damaged and are computed anew."));
    }
    return {};
}

CError FileStatistics::countAll(const CancelFlag &cancel, const std::function<void(int)> &progress)
{
    {
        const std::lock_guard<std::mutex> lock(finding);
        if (CError error = findStored())
            return error;
    }
    if (keptIn(exact))
        return {};
    StatisticsControl control;
    control.cancel = cancel;
    control.progress = progress;
    SharedStatistics counted;
    CError error = compute(StatisticsKind::Exact, control, &counted);
    if (error.IsSuccess())
        keep(&exact, counted);
    else if (!cancel.isRaised())
        faults->failed(error);
    return error;
}

CError FileStatistics::compute(StatisticsKind kind, const StatisticsControl &control, SharedStatistics *result)
{
    StatisticsControl completed = control;
    completed.resilient = configuration().resilientDecoding;
    completed.faults = faults.get();
    const auto start = std::chrono::steady_clock::now();
    StatisticsPtr computed;
    try {
        if (CError error = computeStatistics(*parts.reader, parts.bandMap, kind, completed, &computed))
            return error;
    } catch (const std::bad_alloc &) {
        return noMemory();
    }
    *result = std::move(computed);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    if (logEnabled(PLK_LOG_DEBUG))
        log(PLK_LOG_DEBUG,
            wideFromUtf8("Statistics of \"" + name + "\" took " +
                         std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()) +
                         " ms."));
    return {};
}

CError FileStatistics::noMemory() const
{
    return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory for the statistics of \"" + name + "\"."};
}

SharedStatistics FileStatistics::keptIn(const SharedStatistics &place) const
{
    const std::lock_guard<std::mutex> lock(keeping);
    return place;
}

void FileStatistics::keep(SharedStatistics *place, SharedStatistics statistics)
{
    const std::lock_guard<std::mutex> lock(keeping);
    *place = std::move(statistics);
}

} // namespace xrv
