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
constexpr std::uint64_t kProgressThatCounts = 4096; // or half of what was lacking
constexpr int kMaxRounds = 1000;
constexpr auto kCancelPoll = std::chrono::milliseconds(5);

CError cancelledError()
{
    return {PLK_ERR_CANCELLED, "Reading was cancelled."};
}

/// Request time-out, too many requests (RFC 6585 4), and what a server or the one before it says of itself for a while
/// (RFC 9110 15.5.9, 15.6).
bool isTransient(int status)
{
    return status == 408 || status == 429 || status == 500 || status == 502 || status == 503 || status == 504;
}

std::string sizeText(std::uint64_t bytes)
{
    return std::to_string((bytes + (1 << 20) - 1) >> 20) + " MB";
}

} // namespace

/// What the answers of one round of requests amount to.
struct RangeFetcher::Round
{
    CError trouble;                        ///< worth another try
    int pause = -1;                        ///< milliseconds the server wants to be left alone
    bool isTimeOut = false;                ///< the server kept silent
    bool isInSink = false;                 ///< the whole file went there
    bool isFallback = false;               ///< another way of asking was found to be needed
    std::uint64_t lacking = 0, gained = 0; ///< bytes before, and how many of these came
};

/// How often and after what pauses to try.
class RangeFetcher::Patience
{
public:
    explicit Patience(const StreamOptions &streamOptions)
        : options(streamOptions)
        , backOff(streamOptions.firstBackOff)
    {
    }

    /// Waits before the next try: for the pause that the server asks for (RFC 9110 10.2.3), or one that doubles each
    /// time, whichever is longer. False when there is to be none.
    bool goOn(const Round &round, const CancelFlag &cancel)
    {
        if (++rounds > kMaxRounds) // whatever a server does, there is an end
            return false;
        if (round.isFallback) // asked in another way at once: nothing failed
            return true;
        // A connection that breaks again and again but brings something each time is worth going on with. A few bytes
        // do not count: a server that gives one per request would be asked a thousand times.
        if (round.gained > 0 && round.gained >= std::min(kProgressThatCounts, round.lacking / 2)) {
            failures = 0;
            backOff = options.firstBackOff;
        }
        failures += round.isTimeOut ? 2 : 1; // that one took long enough
        if (failures >= options.tries || round.pause > options.maxRetryAfter)
            return false;
        wait(std::max(round.pause, backOff), cancel);
        backOff *= 2;
        return true;
    }

private:
    static void wait(int milliseconds, const CancelFlag &cancel)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
        while (!cancel.isRaised() && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(kCancelPoll);
    }

    const StreamOptions &options;
    int backOff;
    int failures = 0, rounds = 0;
};

RangeFetcher::RangeFetcher(ServerLink &link)
    : link(link)
{
}

std::uint64_t RangeFetcher::wholeLimit() const
{
    const StreamOptions &options = link.options();
    return options.cacheEnabled ? options.cacheBytes : options.wholeInMemory;
}

CError RangeFetcher::tooLarge(const HttpAnswer &answer) const
{
    const std::uint64_t length = answer.contentLength();
    return {PLK_ERR_TOO_LARGE, "The server of " + quotedName() + " gives files as a whole only, and this one " +
                                   (length > 0 ? "(" + sizeText(length) + ") " : std::string()) +
                                   "is larger than the " + sizeText(wholeLimit()) + " that the stream cache may take."};
}

CError RangeFetcher::open(const FileVersion &known, const CancelFlag &cancel, const Sink &sink, FileVersion *version)
{
    Patience patience(link.options());
    for (;;) {
        const std::uint64_t firstBytes = std::max<std::uint64_t>(1, link.options().firstBytes);
        HttpRequest request = link.request("0-" + std::to_string(firstBytes - 1), firstBytes + kAnswerSlack);
        request.wholeLimit = std::min(wholeLimit(), link.options().wholeInMemory);
        request.headers = known.revalidationHeaders();
        const HttpAnswer answer = link.ask({request}, cancel).front();
        if (answer.outcome == HttpOutcome::Cancelled)
            return cancelledError();
        Round round;
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

/// The first request asks for the file's beginning. Servers send that (206), ignore the range and send the whole file
/// (200; RFC 9110 14.2 allows it), or say that the known version still holds (304).
CError RangeFetcher::takeOpening(const HttpAnswer &answer, const FileVersion &known, const Sink &sink,
                                 FileVersion *version, Round *round)
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
        return takeFirstBytes(answer, sink, version, round);
    return takeFailure(answer, true, round);
}

CError RangeFetcher::takeFirstBytes(const HttpAnswer &answer, const Sink &sink, FileVersion *version, Round *round)
{
    // Its ranges would count the bytes of the compressed form, to which the coding belongs (RFC 9110 8.4).
    if (isCompressed(answer)) {
        round->trouble = {PLK_ERR_SERVER, "The server of " + quotedName() + " answers with compressed bytes."};
        return {};
    }
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
    if (!fault.empty()) {
        round->trouble = {PLK_ERR_SERVER, "The server of " + quotedName() + " cannot be used: " + fault + '.'};
        return {};
    }
    *version = FileVersion::of(answer, pieces.front().contentRange.total);
    sink(0, pieces.front().data, pieces.front().length);
    return {};
}

/// A file that comes as a whole only and does not fit into memory, but on disk: taken when it is read.
CError RangeFetcher::takeLargeWhole(const HttpAnswer &answer, FileVersion *version)
{
    *version = FileVersion::of(answer, answer.contentLength());
    if (!link.options().cacheEnabled || !version->isTellable() || version->length == 0 ||
        version->length > wholeLimit())
        return tooLarge(answer);
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

std::vector<HttpAnswer> RangeFetcher::askFor(const std::vector<RangeGroup> &groups, const FileVersion &version,
                                             const CancelFlag &cancel)
{
    std::vector<HttpRequest> requests;
    for (const RangeGroup &group : groups) {
        const std::uint64_t limit = group.byteCount() + group.ranges.size() * kPartOverhead + kAnswerSlack;
        requests.push_back(link.request(group.text(), limit));
        if (group.isWholeFile) {
            requests.back().wholeSink = wholeSink;
            requests.back().wholeLimit =
                wholeSink ? version.length : std::min(wholeLimit(), link.options().wholeInMemory);
        }
        if (isOnTrial) {
            const int timeout = link.options().trialTimeout;
            requests.back().connectTimeout = std::min(requests.back().connectTimeout, timeout);
            requests.back().stallTimeout = std::min(requests.back().stallTimeout, timeout);
        }
        // The server itself is to refuse bytes of another version. Answers are compared all the same: not every server
        // looks at conditions.
        const std::string condition = version.conditionHeader();
        if (!condition.empty())
            requests.back().headers.push_back(condition);
    }
    logRequests(groups);
    return link.ask(requests, cancel);
}

CError RangeFetcher::fetch(const std::vector<ByteRange> &ranges, const FileVersion &version, const CancelFlag &cancel,
                           const Sink &sink)
{
    ByteRangeSet lacking(ranges);
    const std::string server = link.address().server();
    Patience patience(link.options());
    // Each round asks for what the ones before did not bring: so an answer that broke off is taken up where it ended.
    while (!lacking.isEmpty()) {
        std::vector<RangeGroup> groups{wholeFile(version.length)};
        if (!takesNoRanges)
            groups = planRequests(lacking, ServerTraits::instance().takesSeveralRanges(server));
        const std::vector<HttpAnswer> answers = askFor(groups, version, cancel);
        Round round;
        if (CError failure = takeAnswers(groups, answers, version, sink, &lacking, &round))
            return failure;
        if (round.gained > 0 || round.isInSink)
            isOnTrial = false;
        if (lacking.isEmpty() || round.isInSink)
            break;
        if (isOnTrial && round.trouble && !round.isFallback)
            return round.trouble;
        if (round.trouble)
            logRetry(round.trouble);
        if ((round.trouble || round.gained == 0) && !patience.goOn(round, cancel)) {
            if (round.trouble)
                return round.trouble;
            return {PLK_ERR_SERVER, "The server of " + quotedName() + " does not give the bytes that it is asked for."};
        }
        if (cancel.isRaised())
            return cancelledError();
    }
    return {};
}

CError RangeFetcher::takeAnswers(const std::vector<RangeGroup> &groups, const std::vector<HttpAnswer> &answers,
                                 const FileVersion &version, const Sink &sink, ByteRangeSet *lacking, Round *round)
{
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
    return failure;
}

CError RangeFetcher::takeAnswer(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                                const Sink &sink, Round *round)
{
    CError changed{PLK_ERR_FILE_CHANGED, "The file " + quotedName() + " was changed on the server. Open it again."};
    if (answer.outcome == HttpOutcome::Cancelled)
        return cancelledError();
    // The condition failed, or the file is shorter now than what is asked for (RFC 9110 15.5.13, 15.5.17).
    if (answer.status == 412 || answer.status == 416)
        return changed;
    if (answer.status != 200 && answer.status != 206)
        return takeFailure(answer, false, round);
    if (!version.agreesWith(answer))
        return changed;
    if (answer.outcome == HttpOutcome::Invalid || isCompressed(answer)) {
        round->trouble = {PLK_ERR_SERVER, "The server of " + quotedName() + " answers with what cannot be used" +
                                              (answer.failure.empty() ? "" : ": " + answer.failure) + '.'};
        return {};
    }
    CError error = answer.status == 206 ? takePartial(group, answer, version, sink, round)
                                        : takeWhole(group, answer, version, sink, round);
    if (!error && !round->trouble && (answer.outcome == HttpOutcome::Cut || answer.outcome == HttpOutcome::TimedOut))
        return takeFailure(answer, false, round);
    return error;
}

/// A 206 need not hold what was asked for, nor in that order: a server may join ranges or send part of them
/// (RFC 9110 15.3.7). Each piece says where it belongs; what was not asked for at all is not taken.
CError RangeFetcher::takePartial(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                                 const Sink &sink, Round *round)
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
    const bool isSeveral = group.ranges.size() > 1;
    if (isSeveral && pieces.size() > 1)
        ServerTraits::instance().setTakesSeveralRanges(link.address().server(), true);
    if (!fault.empty()) {
        round->trouble = {PLK_ERR_SERVER, "The server of " + quotedName() + " cannot be used: " + fault + '.'};
    } else if (isSeveral && pieces.size() == 1 && !asked.isEmpty()) {
        ServerTraits::instance().setTakesSeveralRanges(link.address().server(), false);
        round->isFallback = true;
        round->trouble = {PLK_ERR_SERVER, "The server of " + quotedName() + " gives one range at a time."};
    } else if (!asked.isEmpty() && answer.outcome == HttpOutcome::Complete) {
        round->trouble = {PLK_ERR_CONNECTION_LOST,
                          "The server of " + quotedName() + " sent fewer bytes than it was asked for."};
    }
    return {};
}

/// A 200: the whole file, though ranges were asked for. Some servers do so with several ranges only, some always; from
/// then on they are asked in the way that they understand. Nothing is taken of a whole file that was not asked
/// for (HttpRequest::wholeLimit is 0 then), so that no gigabytes come by mistake.
CError RangeFetcher::takeWhole(const RangeGroup &group, const HttpAnswer &answer, const FileVersion &version,
                               const Sink &sink, Round *round)
{
    const bool isAskedFor = group.isWholeFile;
    if (isAskedFor && answer.outcome == HttpOutcome::TooLong)
        return tooLarge(answer);
    if (isAskedFor && answer.outcome == HttpOutcome::Complete && answer.bodyLength != version.length)
        return {PLK_ERR_FILE_CHANGED, "The file " + quotedName() + " was changed on the server. Open it again."};
    if (isAskedFor && wholeSink) {
        round->isInSink = answer.outcome == HttpOutcome::Complete;
        return {};
    }
    if (isAskedFor) {
        sink(0, answer.body.data(), std::min<std::uint64_t>(answer.body.size(), version.length));
        return {};
    }
    round->isFallback = true;
    if (group.ranges.size() > 1) {
        ServerTraits::instance().setTakesSeveralRanges(link.address().server(), false);
        round->trouble = {PLK_ERR_SERVER, "The server of " + quotedName() + " does not take several ranges at once."};
    } else {
        takesNoRanges = true;
        round->trouble = {PLK_ERR_SERVER, "The server of " + quotedName() + " gives files as a whole only."};
    }
    return {};
}

/// What an answer's status says for good; success where another try may help.
CError RangeFetcher::statusError(int status, bool isOpening) const
{
    const std::string of = "The server of " + quotedName();
    switch (status) {
    case 401: // of the server, 407 of a proxy before it (RFC 9110 15.5.2, 15.5.8)
    case 407:
        return {PLK_ERR_NO_ACCESS, of + " wants a user name and password, or does not accept these."};
    case 403:
        return {PLK_ERR_NO_ACCESS, of + " does not allow to read it."};
    case 404:
    case 410:
        if (isOpening)
            return {PLK_ERR_NOT_FOUND, "There is no file " + quotedName() + " on the server."};
        return {PLK_ERR_FILE_CHANGED, "The file " + quotedName() + " vanished from the server while it was open."};
    default:
        break;
    }
    if (status < 300 || isTransient(status))
        return {};
    return {PLK_ERR_SERVER, of + " answers with status " + std::to_string(status) + ", which does not help."};
}

CError RangeFetcher::takeFailure(const HttpAnswer &answer, bool isOpening, Round *round) const
{
    const std::string of = "The server of " + quotedName();
    const int lostCode = isOpening ? PLK_ERR_UNREACHABLE : PLK_ERR_CONNECTION_LOST;
    if (answer.outcome == HttpOutcome::Distrusted)
        return {PLK_ERR_UNTRUSTED, of + " cannot prove that it is the one it claims to be: " + answer.failure + '.'};
    if (answer.outcome == HttpOutcome::Invalid)
        return {PLK_ERR_SERVER, of + " answers with what cannot be used: " + answer.failure + '.'};
    if (CError error = statusError(answer.status, isOpening))
        return error;
    round->isTimeOut = round->isTimeOut || answer.outcome == HttpOutcome::TimedOut;
    if (isTransient(answer.status)) {
        round->pause = std::max(round->pause, retryAfter(answer));
        round->trouble = {lostCode,
                          of + " is out of service at present (status " + std::to_string(answer.status) + ")."};
    } else if (answer.status != 0 && answer.outcome == HttpOutcome::Complete) {
        return {PLK_ERR_SERVER,
                of + " answers with status " + std::to_string(answer.status) + ", which does not help."};
    } else if (isOpening) {
        const char *const what = answer.status == 0 ? " cannot be reached: " : " broke off: ";
        round->trouble = {lostCode, of + what + answer.failure + '.'};
    } else {
        round->trouble = {lostCode,
                          "The connection to the server of " + quotedName() + " is lost: " + answer.failure + '.'};
    }
    return {};
}

} // namespace xrv
