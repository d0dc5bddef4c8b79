#include "filesource.h"

#include "localfile.h"

#include "base/utf8.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <numeric>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::uint64_t kMaxGap = 4096;                        // reading these bytes costs less than another call
constexpr std::uint64_t kMaxJoin = std::uint64_t(4) << 20;     // joined reads are copied: no more than this at once
constexpr std::uint64_t kCancelStep = std::uint64_t(16) << 20; // the flag is looked at between pieces of this size

} // namespace

/// Ranges that are read in one go: their common span, and which they are.
struct FileSource::Run
{
    ByteRange span;
    std::vector<std::size_t> members; // indices of the ranges

    bool takes(const ByteRange &range) const
    {
        const std::uint64_t end = std::max(span.end(), range.end());
        return range.offset <= span.end() + kMaxGap && end - span.offset <= kMaxJoin;
    }
    static std::vector<Run> plan(const std::vector<ByteRange> &ranges);
};

std::vector<FileSource::Run> FileSource::Run::plan(const std::vector<ByteRange> &ranges)
{
    std::vector<std::size_t> order(ranges.size());
    std::iota(order.begin(), order.end(), std::size_t(0));
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return ranges[a].offset < ranges[b].offset; });
    std::vector<Run> runs;
    for (std::size_t index : order) {
        const ByteRange &range = ranges[index];
        if (runs.empty() || !runs.back().takes(range)) {
            runs.push_back({range, {index}});
            continue;
        }
        Run &run = runs.back();
        run.span.length = std::max(run.span.end(), range.end()) - run.span.offset;
        run.members.push_back(index);
    }
    return runs;
}

FileSource::FileSource(std::string openedName, std::unique_ptr<LocalFile> openedFile, CancelFlag givenUp)
    : fileName(std::move(openedName))
    , file(std::move(openedFile))
    , givenUp(std::move(givenUp))
{
}

FileSource::~FileSource() = default;

CError FileSource::open(const std::string &name, std::shared_ptr<ByteSource> *source, const CancelFlag &givenUp)
{
    if (name.empty())
        return {PLK_ERR_NOT_FOUND, "No file name was given."};
    std::unique_ptr<LocalFile> file;
    if (CError error = LocalFile::open(name, &file))
        return error;
    source->reset(new FileSource(name, std::move(file), givenUp));
    return {};
}

std::string FileSource::identity() const
{
    return fileName + '|' + file->version();
}

void FileSource::logRead(const std::vector<ByteRange> &ranges) const
{
    if (!logEnabled(PLK_LOG_TRACE))
        return;
    std::uint64_t bytes = 0;
    for (const ByteRange &range : ranges)
        bytes += range.length;
    log(PLK_LOG_TRACE, wideFromUtf8("Reading " + std::to_string(bytes) + " bytes in " + std::to_string(ranges.size()) +
                                    " ranges of \"" + fileName + "\"."));
}

std::uint64_t FileSource::size() const
{
    return file->size();
}

CError FileSource::read(const std::vector<ByteRange> &ranges, const CancelFlag &cancel, std::vector<Bytes> *out)
{
    if (CError error = checkRanges(ranges))
        return error;
    logRead(ranges);
    try {
        out->assign(ranges.size(), {});
        for (const Run &run : Run::plan(ranges)) {
            if (CError error = readRun(run, ranges, cancel, out))
                return error;
        }
    } catch (const std::bad_alloc &) {
        return {PLK_ERR_OUT_OF_MEMORY, "There is not enough memory to read from \"" + fileName + "\"."};
    }
    // After the bytes: a change before or during the read shows now.
    return file->isUnchanged() ? CError() : changedError();
}

CError FileSource::readRun(const Run &run, const std::vector<ByteRange> &ranges, const CancelFlag &cancel,
                           std::vector<Bytes> *out) const
{
    if (run.members.size() == 1)
        return readBytes(run.span, cancel, &(*out)[run.members.front()]);
    Bytes joined;
    if (CError error = readBytes(run.span, cancel, &joined))
        return error;
    for (std::size_t index : run.members) {
        const auto begin = joined.begin() + static_cast<std::ptrdiff_t>(ranges[index].offset - run.span.offset);
        (*out)[index].assign(begin, begin + static_cast<std::ptrdiff_t>(ranges[index].length));
    }
    return {};
}

CError FileSource::readBytes(ByteRange range, const CancelFlag &cancel, Bytes *out) const
{
    out->resize(static_cast<std::size_t>(range.length));
    for (std::uint64_t done = 0; done < range.length;) {
        if (cancel.isRaised() || givenUp.isRaised())
            return {PLK_ERR_CANCELLED, "Reading was cancelled."};
        const auto wanted = static_cast<std::size_t>(std::min(kCancelStep, range.length - done));
        std::size_t count = 0;
        if (CError error = file->readAt(range.offset + done, out->data() + done, wanted, &count))
            return error;
        if (count < wanted) // the ranges lie within the size at opening
            return changedError();
        done += count;
    }
    return {};
}

CError FileSource::changedError() const
{
    return {PLK_ERR_FILE_CHANGED, "The file \"" + fileName + "\" was changed while it was open. Open it again."};
}

} // namespace xrv
