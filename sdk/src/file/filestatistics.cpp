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

FileStatistics::FileStatistics(ByteSource &source, const FileParts &parts, std::shared_ptr<FaultLog> faults,
                               std::string shownName)
    : source(source)
    , parts(parts)
    , faults(std::move(faults))
    , name(std::move(shownName))
{
}

CError FileStatistics::full(const PLKFileStatistics **result)
{
    const std::lock_guard<std::mutex> lock(mutex);
    return find(&fullStatistics, StatisticsDetail::Full, result);
}

CError FileStatistics::display(const PLKFileStatistics **result)
{
    const std::lock_guard<std::mutex> lock(mutex);
    return find(&displayStatistics, StatisticsDetail::Display, result);
}

CError FileStatistics::find(StatisticsPtr *kept, StatisticsDetail detail, const PLKFileStatistics **result)
{
    try {
        if (!*kept && parts.xrv)
            if (CError error = readStored(kept))
                return error;
        if (!*kept)
            if (CError error = compute(kept, detail))
                return error;
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory for the statistics of \"" + name + "\"."};
    }
    *result = kept->get();
    return {};
}

/// Damaged ones are none: they are then computed.
CError FileStatistics::readStored(StatisticsPtr *kept)
{
    Bytes content;
    if (CError error = readXrvContent(source, parts.xrv->statistics, &content))
        return error;
    *kept = parseStatistics(content, parts.bandCount());
    if (!*kept && !content.empty() && logEnabled(PLK_LOG_WARNING))
        log(PLK_LOG_WARNING, wideFromUtf8("\"" + name + "\": The statistics are damaged and are computed anew."));
    return {};
}

CError FileStatistics::compute(StatisticsPtr *kept, StatisticsDetail detail)
{
    const bool resilient = configuration().resilientDecoding;
    const auto start = std::chrono::steady_clock::now();
    if (CError error = computeStatistics(*parts.reader, parts.bandMap, detail, resilient, kept, faults.get()))
        return error;
    const auto elapsed = std::chrono::steady_clock::now() - start;
    if (logEnabled(PLK_LOG_DEBUG))
        log(PLK_LOG_DEBUG,
            wideFromUtf8("Statistics of \"" + name + "\" took " +
                         std::to_string(std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count()) +
                         " ms."));
    return {};
}

} // namespace xrv
