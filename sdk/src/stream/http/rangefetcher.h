#pragma once

#include "answerfaults.h"
#include "serverlink.h"

#include "stream/values/byterangeset.h"
#include "stream/values/fileversion.h"

#include <atomic>
#include <functional>
#include <mutex>

namespace xrv {

/// Gets bytes of one file from its server, in spite of what servers and connections do: joins and bundles ranges, asks
/// for single ones where the server does not answer several, tries again after a pause, takes what came of a broken
/// answer, compares every answer with the version of the file. Any thread, several at once.
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
    /// fails. A file that comes as a whole only may have been handed over to another caller meanwhile.
    /// PLK_ERR_CONNECTION_LOST, PLK_ERR_FILE_CHANGED and those of open().
    PLK::CError fetch(const std::vector<ByteRange> &ranges, const FileVersion &version, const CancelFlag &cancel,
                      const Sink &sink);

    /// Where files go that their server gives as a whole only: then they are not handed over. Without one they are, and
    /// may be no larger than what memory may take. Before fetch().
    void setWholeSink(std::shared_ptr<BodySink> sink) { wholeSink = std::move(sink); }
    /// What becomes of requests for parts of the file that are cancelled. Before fetch().
    using AfterlifeOf = std::function<std::shared_ptr<Afterlife>(const RangeGroup &group)>;
    void setAfterlife(AfterlifeOf maker) { afterlifeOf = std::move(maker); }
    /// Hands over what \a answer has of what was asked for, where that is proven to be of \a version.
    static void takeLeftover(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                             const Sink &sink);
    /// Until bytes have come again, fetch() tries once and with short time-outs.
    void setOnTrial(bool onTrial) { isOnTrial = onTrial; }
    /// The server gives this file as a whole only.
    bool getsWholeOnly() const { return takesNoRanges; }
    /// Bytes were handed over of which the server does not say that they are of the version that was opened. Set before
    /// they are.
    bool isDoubtful() const { return handsOverUnproven; }

private:
    class WholeTurn;

    HttpRequest requestFor(const RangeGroup &group, const FileVersion &version) const;
    std::vector<HttpAnswer> askFor(const std::vector<RangeGroup> &groups, const FileVersion &version,
                                   const CancelFlag &cancel);
    PLK::CError takeOpening(const HttpAnswer &answer, const FileVersion &known, const Sink &sink, FileVersion *version,
                            FetchRound *round);
    PLK::CError takeFirstBytes(const HttpAnswer &answer, const Sink &sink, FileVersion *version);
    PLK::CError fetchParts(ByteRangeSet *lacking, const FileVersion &version, const CancelFlag &cancel,
                           const Sink &sink);
    PLK::CError fetchWhole(ByteRangeSet *lacking, const FileVersion &version, const CancelFlag &cancel,
                           const Sink &sink);
    PLK::CError runRound(const std::vector<RangeGroup> &groups, const FileVersion &version, const CancelFlag &cancel,
                         const Sink &sink, ByteRangeSet *lacking, FetchRound *round);
    PLK::CError judgeRound(const FetchRound &round, FetchPatience *patience, const CancelFlag &cancel) const;
    PLK::CError takeAnswer(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                           const Sink &sink, FetchRound *round);
    PLK::CError takeBody(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                         const Sink &sink, FetchRound *round);
    PLK::CError takePartial(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                            const Sink &sink, FetchRound *round);
    PLK::CError takeWhole(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                          const Sink &sink, FetchRound *round);
    PLK::CError takeLargeWhole(const HttpAnswer &answer, FileVersion *version);
    void askForSeveral(const FileVersion &version) const;
    PLK::CError wholeFault(const FileVersion &version, bool isKept) const;
    std::uint64_t openingLimit() const;
    void setDoubtful();
    void logRequests(const std::vector<RangeGroup> &groups) const;
    void logRetry(const PLK::CError &error) const;
    std::string quotedName() const { return '"' + link.address().shown() + '"'; }

    ServerLink &link;
    const AnswerFaults openingFaults, faults;
    std::shared_ptr<BodySink> wholeSink;
    AfterlifeOf afterlifeOf;
    std::atomic<bool> takesNoRanges{false}, isOnTrial{false}, handsOverUnproven{false};

    std::mutex mutex;             ///< guards the members below
    bool wholeIsUnderWay = false; ///< some thread gets the whole file
    unsigned wholesThatCame = 0;
};

} // namespace xrv
