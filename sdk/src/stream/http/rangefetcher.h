#pragma once

#include "rangeplan.h"
#include "serverlink.h"

#include "stream/values/byterangeset.h"
#include "stream/values/fileversion.h"

#include <atomic>
#include <functional>

namespace xrv {

/// Gets bytes of one file from its server, in spite of what servers and connections do: joins and bundles ranges, tries
/// again after a pause, takes what came of a broken answer, compares every answer with the version of the file. Any
/// thread, several at once.
class RangeFetcher
{
public:
    /// Takes bytes that came: \a length of them from \a offset of the file. Called on the fetching thread.
    using Sink = std::function<void(std::uint64_t offset, const std::uint8_t *data, std::uint64_t length)>;

    explicit RangeFetcher(ServerLink &link);

    /// First request: learns the version of the file and hands over the bytes that came with it. With a version that is
    /// \a known asks only whether that is still the one; then nothing is handed over. PLK_ERR_NOT_FOUND,
    /// PLK_ERR_NO_ACCESS, PLK_ERR_UNREACHABLE, PLK_ERR_SERVER, PLK_ERR_TOO_LARGE, PLK_ERR_UNTRUSTED or
    /// PLK_ERR_CANCELLED.
    PLK::CError open(const FileVersion &known, const CancelFlag &cancel, const Sink &sink, FileVersion *version);

    /// Brings \a ranges of \a version, and perhaps more. What came is handed over as it comes, also where the rest
    /// fails. PLK_ERR_CONNECTION_LOST, PLK_ERR_FILE_CHANGED and those of open().
    PLK::CError fetch(const std::vector<ByteRange> &ranges, const FileVersion &version, const CancelFlag &cancel,
                      const Sink &sink);

    /// Where files go that their server gives as a whole only: then they are not handed over. Without one they are, and
    /// may be no larger than what memory may take. Before fetch().
    void setWholeSink(std::shared_ptr<BodySink> sink) { wholeSink = std::move(sink); }
    /// Until bytes have come again, fetch() tries once and with short time-outs.
    void setOnTrial(bool onTrial) { isOnTrial = onTrial; }
    /// The server gives this file as a whole only.
    bool getsWholeOnly() const { return takesNoRanges; }

private:
    struct Round;
    class Patience;

    std::vector<HttpAnswer> askFor(const std::vector<RangeGroup> &groups, const FileVersion &version,
                                   const CancelFlag &cancel);
    PLK::CError takeOpening(const HttpAnswer &answer, const FileVersion &known, const Sink &sink, FileVersion *version,
                            Round *round);
    PLK::CError takeFirstBytes(const HttpAnswer &answer, const Sink &sink, FileVersion *version, Round *round);
    PLK::CError takeAnswers(const std::vector<RangeGroup> &groups, const std::vector<HttpAnswer> &answers,
                            const FileVersion &version, const Sink &sink, ByteRangeSet *lacking, Round *round);
    PLK::CError takeAnswer(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                           const Sink &sink, Round *round);
    PLK::CError takePartial(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                            const Sink &sink, Round *round);
    PLK::CError takeWhole(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                          const Sink &sink, Round *round);
    PLK::CError statusError(int status, bool isOpening) const;
    PLK::CError takeFailure(const HttpAnswer &answer, bool isOpening, Round *round) const;
    PLK::CError takeLargeWhole(const HttpAnswer &answer, FileVersion *version);
    PLK::CError tooLarge(const HttpAnswer &answer) const;
    std::uint64_t wholeLimit() const;
    void logRequests(const std::vector<RangeGroup> &groups) const;
    void logRetry(const PLK::CError &error) const;
    std::string quotedName() const { return '"' + link.address().shown() + '"'; }

    ServerLink &link;
    std::shared_ptr<BodySink> wholeSink;
    std::atomic<bool> takesNoRanges{false}, isOnTrial{false};
};

} // namespace xrv
