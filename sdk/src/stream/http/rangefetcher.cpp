#include "rangefetcher.h"

#include "rangeanswer.h"

#include "base/utf8.h"
#include "log/logger.h"

#include <xrv60/plklog.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace xrv {

using PLK::CError;

namespace {

constexpr std::uint64_t kPartOverhead = 1024; // headers of a part, generously
constexpr std::uint64_t kAnswerSlack = 4096;
constexpr int kMegabyteBits = 20;
constexpr std::uint64_t kLongEnoughForSeveral = 65536;
constexpr auto kCancelPoll = std::chrono::milliseconds(5);

CError cancelledError()
{
    return {PLK_ERR_CANCELLED, "Reading was cancelled."};
}

bool isSeveral(const RangeGroup &group)
{
    return group.ranges.size() > 1;
}

} // namespace

/// Learns from a request for the first and the last byte of a file whether its server answers several ranges at once.
class SeveralProbe : public Afterlife
{
public:
    explicit SeveralProbe(std::string serverName)
        : server(std::move(serverName))
    {
    }
    void begin() override {}
    bool goesOn() const override { return true; }
    void end(const HttpAnswer &answer) override
    {
        std::vector<RangePiece> pieces;
        std::string fault;
        const bool isAnswered = answer.outcome == HttpOutcome::Complete || answer.outcome == HttpOutcome::TooLong;
        if (isAnswered && answer.status != 0)
            ServerTraits::instance().setTakesSeveralRanges(
                server, answer.status == 206 && readPieces(answer, &pieces, &fault) && pieces.size() == 2);
    }

private:
    const std::string server;
};

/// The right to get the whole file: nobody needs it twice at once. Waits for who has it.
class RangeFetcher::WholeTurn
{
public:
    WholeTurn(RangeFetcher *rangeFetcher, const CancelFlag &cancel)
        : fetcher(rangeFetcher)
    {
        std::unique_lock<std::mutex> lock(fetcher->mutex);
        const unsigned before = fetcher->wholesThatCame;
        while (fetcher->wholeIsUnderWay && !cancel.isRaised()) {
            lock.unlock();
            std::this_thread::sleep_for(kCancelPoll);
            lock.lock();
        }
        cameMeanwhile = fetcher->wholesThatCame != before;
        isOurs = !fetcher->wholeIsUnderWay && !cameMeanwhile;
        if (isOurs)
            fetcher->wholeIsUnderWay = true;
    }
    ~WholeTurn()
    {
        const std::lock_guard<std::mutex> lock(fetcher->mutex);
        if (isOurs)
            fetcher->wholeIsUnderWay = false;
        fetcher->wholesThatCame += hasCome ? 1 : 0;
    }
    WholeTurn(const WholeTurn &) = delete;
    WholeTurn &operator=(const WholeTurn &) = delete;

    bool othersBroughtIt() const { return cameMeanwhile; }
    bool isHeld() const { return isOurs; }
    void setCome() { hasCome = true; }

private:
    RangeFetcher *const fetcher;
    bool isOurs = false, cameMeanwhile = false, hasCome = false;
};

RangeFetcher::RangeFetcher(ServerLink &link)
    : link(link)
    , openingFaults(link.address().shown(), true)
    , faults(link.address().shown(), false)
{
}

/// Why a file is not taken as a whole, on disk where it \a isKept, else in memory; success where it is. Its length is 0
/// where that is unknown.
CError RangeFetcher::wholeFault(const FileVersion &version, bool isKept) const
{
    const StreamOptions &options = link.options();
    const bool goesToDisk = isKept && options.cacheEnabled && version.length > 0;
    const std::uint64_t limit = goesToDisk ? options.cacheBytes : options.wholeInMemory;
    if (version.length > 0 && version.length <= limit)
        return {};
    const std::string bound = std::to_string(limit >> kMegabyteBits) + " MB that ";
    const std::uint64_t roundedUp = (version.length + (1 << kMegabyteBits) - 1) >> kMegabyteBits;
    std::string text = "The server of " + quotedName() + " gives files as a whole only, and ";
    if (version.length == 0)
        return {PLK_ERR_TOO_LARGE,
                text + "does not say how long this one is: more than the " + bound + "are taken into memory."};
    text += "this one (" + std::to_string(roundedUp) + " MB) is larger than the " + bound;
    if (goesToDisk)
        return {PLK_ERR_TOO_LARGE, text + "the stream cache may take."};
    text += "are taken into memory. The stream cache ";
    return {PLK_ERR_TOO_LARGE, text + (!options.cacheEnabled   ? "is switched off."
                                       : !version.isTellable() ? "does not keep it: nothing tells its versions apart."
                                                               : "cannot be used.")};
}

CError RangeFetcher::open(const FileVersion &known, const CancelFlag &cancel, const Sink &sink, FileVersion *version)
{
    FetchPatience patience(link.options());
    for (;;) {
        const std::uint64_t firstBytes = std::max<std::uint64_t>(1, link.options().firstBytes);
        HttpRequest request = link.request("0-" + std::to_string(firstBytes - 1), firstBytes + kAnswerSlack);
        request.wholeLimit = openingLimit();
        request.headers = known.revalidationHeaders();
        const HttpAnswer answer = link.ask({request}, cancel).front();
        if (answer.outcome == HttpOutcome::Cancelled)
            return cancelledError();
        if (answer.status != 0)
            ServerTraits::instance().setMultiplexes(link.address().server(), answer.isMultiplexed);
        FetchRound round;
        CError error = takeOpening(answer, known, sink, version, &round);
        if (error || !round.trouble)
            return error;
        logRetry(round.trouble);
        // Whoever opens a file waits: once for a server that keeps silent is enough.
        if (answer.outcome == HttpOutcome::TimedOut || !patience.goOn(round, cancel))
            return round.trouble;
        if (cancel.isRaised()) // no further request
            return cancelledError();
    }
}

/// Bytes of a whole file that are taken where its beginning was asked for.
std::uint64_t RangeFetcher::openingLimit() const
{
    const StreamOptions &options = link.options();
    return options.cacheEnabled ? std::min(options.cacheBytes, options.wholeInMemory) : options.wholeInMemory;
}

/// The first request asks for the file's beginning. Servers send that (206), ignore the range and send the whole file
/// (200; RFC 9110 14.2 allows it), or say that the known version still holds (304).
CError RangeFetcher::takeOpening(const HttpAnswer &answer, const FileVersion &known, const Sink &sink,
                                 FileVersion *version, FetchRound *round)
{
    if (answer.status == 304 && known.isTellable()) {
        *version = known;
        return {};
    }
    // An empty file has no first byte to send: "not satisfiable" (RFC 9110 15.5.17), with its length in the header.
    ContentRange range;
    if (answer.status == 416 && ContentRange::parse(answer.header("content-range"), &range) && range.total == 0) {
        *version = FileVersion::of(answer, 0);
        return {};
    }
    if (answer.status == 200 && answer.outcome == HttpOutcome::TooLong)
        return takeLargeWhole(answer, version);
    if (answer.status == 206 || (answer.status == 200 && answer.outcome == HttpOutcome::Complete))
        return takeFirstBytes(answer, sink, version);
    return openingFaults.judge(answer, round);
}

CError RangeFetcher::takeFirstBytes(const HttpAnswer &answer, const Sink &sink, FileVersion *version)
{
    // Its ranges would count the bytes of the compressed form, to which the coding belongs (RFC 9110 8.4).
    if (isCompressed(answer))
        return openingFaults.unusable("it is compressed");
    if (answer.status == 200) {
        *version = FileVersion::of(answer, answer.body.size());
        takesNoRanges = answer.body.size() > link.options().firstBytes; // a small file says nothing about that
        sink(0, answer.body.data(), answer.body.size());
        return {};
    }
    std::vector<RangePiece> pieces;
    std::string fault;
    if (readPieces(answer, &pieces, &fault) && (pieces.empty() || !pieces.front().contentRange.hasTotal))
        fault = "its answer does not say how long the file is";
    else if (fault.empty() && pieces.front().contentRange.range.offset != 0)
        fault = "its answer carries other bytes than were asked for";
    if (!fault.empty())
        return openingFaults.unusable(fault);
    *version = FileVersion::of(answer, pieces.front().contentRange.total);
    sink(0, pieces.front().data, pieces.front().length);
    return {};
}

/// A file that comes as a whole only and does not fit into memory, but on disk: taken when it is read.
CError RangeFetcher::takeLargeWhole(const HttpAnswer &answer, FileVersion *version)
{
    if (isCompressed(answer))
        return openingFaults.unusable("it is compressed");
    *version = FileVersion::of(answer, answer.contentLength());
    if (CError error = wholeFault(*version, version->isTellable()))
        return error;
    takesNoRanges = true;
    return {};
}

void RangeFetcher::logRequests(const std::vector<RangeGroup> &groups) const
{
    if (!logEnabled(PLK_LOG_TRACE))
        return;
    for (const RangeGroup &group : groups)
        log(PLK_LOG_TRACE, wideFromUtf8("Asking for " + std::to_string(group.byteCount()) + " bytes in " +
                                        std::to_string(group.ranges.size()) + " ranges of " + quotedName() + '.'));
}

void RangeFetcher::logRetry(const CError &error) const
{
    if (logEnabled(PLK_LOG_DEBUG))
        log(PLK_LOG_DEBUG, wideFromUtf8(quotedName() + ", to be tried again: " + error.GetErrorMessage()));
}

void RangeFetcher::setDoubtful()
{
    if (!handsOverUnproven.exchange(true) && logEnabled(PLK_LOG_WARNING))
        log(PLK_LOG_WARNING,
            wideFromUtf8("The server of " + quotedName() +
                         " does not say any more which version of the file it sends. What comes is shown, as it may be "
                         "right, but not kept."));
}

HttpRequest RangeFetcher::requestFor(const RangeGroup &group, const FileVersion &version) const
{
    HttpRequest request =
        link.request(group.text(), group.byteCount() + group.ranges.size() * kPartOverhead + kAnswerSlack);
    if (group.isWholeFile) {
        request.wholeSink = wholeSink;
        request.wholeLimit = version.length;
    } else if (afterlifeOf) {
        request.afterlife = afterlifeOf(group);
    }
    if (isOnTrial) {
        const int timeout = link.options().trialTimeout;
        request.connectTimeout = std::min(request.connectTimeout, timeout);
        request.stallTimeout = std::min(request.stallTimeout, timeout);
    }
    // The server itself is to refuse bytes of another version. Answers are compared all the same: not every server
    // looks at conditions.
    const std::string condition = version.conditionHeader();
    if (!condition.empty())
        request.headers.push_back(condition);
    return request;
}

std::vector<HttpAnswer> RangeFetcher::askFor(const std::vector<RangeGroup> &groups, const FileVersion &version,
                                             const CancelFlag &cancel)
{
    std::vector<HttpRequest> requests;
    for (const RangeGroup &group : groups)
        requests.push_back(requestFor(group, version));
    logRequests(groups);
    return link.ask(requests, cancel);
}

/// Where one connection carries many requests, that is found out beside them.
void RangeFetcher::askForSeveral(const FileVersion &version) const
{
    ServerTraits &traits = ServerTraits::instance();
    const std::string server = link.address().server();
    if (version.length < kLongEnoughForSeveral || !traits.multiplexes(server) || !traits.shallAskForSeveral(server))
        return;
    const RangeGroup ends{{{0, 1}, {version.length - 1, 1}}, false};
    HttpRequest request = requestFor(ends, version);
    request.mayFlood = true;
    request.afterlife = std::make_shared<SeveralProbe>(server);
    link.send(request);
}

CError RangeFetcher::fetch(const std::vector<ByteRange> &ranges, const FileVersion &version, const CancelFlag &cancel,
                           const Sink &sink)
{
    ByteRangeSet lacking(ranges);
    if (!takesNoRanges) // which may turn out meanwhile
        if (CError error = fetchParts(&lacking, version, cancel, sink))
            return error;
    return lacking.isEmpty() ? CError() : fetchWhole(&lacking, version, cancel, sink);
}

/// Until nothing is lacking, or the server is found to give files as a whole only.
CError RangeFetcher::fetchParts(ByteRangeSet *lacking, const FileVersion &version, const CancelFlag &cancel,
                                const Sink &sink)
{
    FetchPatience patience(link.options());
    RangeStyle style(link.address().server());
    // Each round asks for what the ones before did not bring: so an answer that broke off is taken up where it ended.
    while (!lacking->isEmpty() && !takesNoRanges) {
        FetchRound round;
        if (CError failure = runRound(style.plan(*lacking), version, cancel, sink, lacking, &round))
            return failure;
        style.learn(round);
        askForSeveral(version);
        if (lacking->isEmpty() || takesNoRanges)
            break;
        if (CError failure = judgeRound(round, &patience, cancel))
            return failure;
    }
    return {};
}

CError RangeFetcher::fetchWhole(ByteRangeSet *lacking, const FileVersion &version, const CancelFlag &cancel,
                                const Sink &sink)
{
    // Its length is known: nothing is asked for that could not be taken.
    if (CError error = wholeFault(version, wholeSink != nullptr))
        return error;
    WholeTurn turn(this, cancel);
    if (turn.othersBroughtIt())
        return {};
    if (!turn.isHeld())
        return cancelledError();
    FetchPatience patience(link.options());
    for (;;) {
        FetchRound round;
        if (CError failure = runRound({wholeFile(version.length)}, version, cancel, sink, lacking, &round))
            return failure;
        if (lacking->isEmpty() || round.isInSink)
            break;
        if (CError failure = judgeRound(round, &patience, cancel))
            return failure;
    }
    turn.setCome();
    return {};
}

/// Asks for \a groups and takes what comes; an error where there is no use in going on.
CError RangeFetcher::runRound(const std::vector<RangeGroup> &groups, const FileVersion &version,
                              const CancelFlag &cancel, const Sink &sink, ByteRangeSet *lacking, FetchRound *round)
{
    const std::vector<HttpAnswer> answers = askFor(groups, version, cancel);
    round->lacking = lacking->byteCount();
    const Sink take = [&](std::uint64_t offset, const std::uint8_t *data, std::uint64_t length) {
        for (const ByteRange &wanted : lacking->within({offset, length}))
            round->gained += wanted.length;
        lacking->remove(ByteRange{offset, length});
        sink(offset, data, length);
    };
    CError failure;
    for (std::size_t i = 0; i < answers.size(); ++i)
        if (CError error = takeAnswer(groups[i], answers[i], version, take, round))
            failure = failure ? failure : error; // what the others brought is good all the same
    if (round->gained > 0 || round->isInSink)
        isOnTrial = false;
    return failure;
}

/// Whether there is to be a next round, after a pause where that may help; success where there is.
CError RangeFetcher::judgeRound(const FetchRound &round, FetchPatience *patience, const CancelFlag &cancel) const
{
    if (isOnTrial && round.trouble && !round.isFallback)
        return round.trouble;
    if (round.trouble)
        logRetry(round.trouble);
    if ((round.trouble || round.gained == 0) && !patience->goOn(round, cancel))
        return round.trouble ? round.trouble
                             : CError{PLK_ERR_SERVER, "The server of " + quotedName() +
                                                          " does not give the bytes that it is asked for."};
    return cancel.isRaised() ? cancelledError() : CError();
}

CError RangeFetcher::takeAnswer(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                                const Sink &sink, FetchRound *round)
{
    if (answer.outcome == HttpOutcome::Cancelled)
        return cancelledError();
    round->isMultiplexed = round->isMultiplexed || answer.isMultiplexed;
    if (isSeveral(group) && AnswerFaults::mayConcernSeveral(answer.status)) {
        faults.refuseSeveral(answer, "it answers with status " + std::to_string(answer.status), round);
        return {};
    }
    if (answer.status != 200 && answer.status != 206) {
        if (isSeveral(group) && round->several == FetchRound::Several::Fine)
            round->several = FetchRound::Several::Doubted; // something on the way may drop them
        return faults.judge(answer, round);
    }
    CError error = takeBody(group, answer, version, sink, round);
    if (!error && !round->trouble && (answer.outcome == HttpOutcome::Cut || answer.outcome == HttpOutcome::TimedOut))
        return faults.judge(answer, round);
    return error;
}

/// Of a 200 or 206, unless it is of another version or its bytes are not those of the file.
CError RangeFetcher::takeBody(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                              const Sink &sink, FetchRound *round)
{
    const FileVersion::Match match = version.match(answer);
    if (match == FileVersion::Match::Different)
        return faults.changed();
    std::string fault;
    if (isCompressed(answer))
        fault = "it is compressed";
    else if (match == FileVersion::Match::Unproven && (isSeveral(group) || (group.isWholeFile && wholeSink)))
        fault = "it does not say which version of the file it is of";
    if (!fault.empty() && isSeveral(group) && answer.status == 206) {
        faults.refuseSeveral(answer, fault, round);
        return {};
    }
    if (!fault.empty() && !isSeveral(group))
        return faults.unusable(fault);
    if (answer.outcome == HttpOutcome::Invalid) {
        round->trouble = faults.unusable(answer.failure);
        return {};
    }
    if (match == FileVersion::Match::Unproven && (answer.status == 206 || group.isWholeFile))
        setDoubtful();
    return answer.status == 206 ? takePartial(group, answer, version, sink, round)
                                : takeWhole(group, answer, version, sink, round);
}

void RangeFetcher::takeLeftover(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                                const Sink &sink)
{
    if (answer.status != 206 || isCompressed(answer) || version.match(answer) != FileVersion::Match::Same)
        return;
    std::vector<RangePiece> pieces;
    std::string fault;
    readPieces(answer, &pieces, &fault);
    const ByteRangeSet asked(group.ranges);
    for (const RangePiece &piece : pieces) {
        const ContentRange &place = piece.contentRange;
        const ByteRange came{place.range.offset, piece.length};
        if ((!place.hasTotal || place.total == version.length) && came.end() <= version.length &&
            !asked.within(came).empty())
            sink(came.offset, piece.data, came.length);
    }
}

/// A 206 need not hold what was asked for, nor in that order: a server may join ranges or send part of them
/// (RFC 9110 15.3.7.2). Each piece says where it belongs; what was not asked for at all is not taken.
CError RangeFetcher::takePartial(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                                 const Sink &sink, FetchRound *round)
{
    std::vector<RangePiece> pieces;
    std::string fault;
    readPieces(answer, &pieces, &fault);
    ByteRangeSet asked(group.ranges);
    for (const RangePiece &piece : pieces) {
        const ContentRange &place = piece.contentRange;
        if (place.hasTotal && place.total != version.length)
            return {PLK_ERR_FILE_CHANGED, "The file " + quotedName() + " was changed on the server: it is " +
                                              std::to_string(place.total) + " bytes long now. Open it again."};
        const ByteRange came{place.range.offset, piece.length};
        if (came.end() > version.length || (piece.length > 0 && asked.within(came).empty())) {
            fault = "its answer carries other bytes than were asked for";
            continue;
        }
        sink(came.offset, piece.data, came.length);
        asked.remove(came);
    }
    if (isSeveral(group) && pieces.size() > 1)
        ServerTraits::instance().setTakesSeveralRanges(link.address().server(), true);
    const bool isWhole = answer.outcome == HttpOutcome::Complete || answer.outcome == HttpOutcome::TooLong;
    if (isSeveral(group) && (!fault.empty() || (isWhole && pieces.size() <= 1 && !asked.isEmpty())))
        faults.refuseSeveral(answer, fault.empty() ? "it gives one at a time" : fault, round);
    else if (!fault.empty())
        round->trouble = faults.unusable(fault);
    else if (!asked.isEmpty() && answer.outcome == HttpOutcome::Complete)
        round->trouble = {PLK_ERR_CONNECTION_LOST,
                          "The server of " + quotedName() + " sent fewer bytes than it was asked for."};
    return {};
}

/// A 200: the whole file, though ranges were asked for. Some servers do so with several ranges only, some always; from
/// then on they are asked in the way that they understand. Nothing is taken of a whole file that was not asked
/// for (HttpRequest::wholeLimit is 0 then), so that no gigabytes come by mistake.
CError RangeFetcher::takeWhole(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                               const Sink &sink, FetchRound *round)
{
    if (!group.isWholeFile && isSeveral(group)) {
        faults.refuseSeveral(answer, "it sends all of the file", round);
        return {};
    }
    if (!group.isWholeFile) {
        takesNoRanges = true;
        round->isFallback = true;
        return {};
    }
    if (answer.outcome == HttpOutcome::TooLong ||
        (answer.outcome == HttpOutcome::Complete && answer.bodyLength != version.length))
        return faults.changed();
    if (wholeSink)
        round->isInSink = answer.outcome == HttpOutcome::Complete;
    else
        sink(0, answer.body.data(), std::min<std::uint64_t>(answer.body.size(), version.length));
    return {};
}

} // namespace xrv
