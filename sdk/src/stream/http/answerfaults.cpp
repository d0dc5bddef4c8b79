#include "answerfaults.h"

#include "rangeanswer.h"

#include <algorithm>

namespace xrv {

using PLK::CError;

namespace {

/// Request time-out, too many requests (RFC 6585 4), and what a server or the one before it says of itself for a while
/// (RFC 9110 15.5.9, 15.6).
bool isTransient(int status)
{
    return status == 408 || status == 429 || status == 500 || status == 502 || status == 503 || status == 504;
}

} // namespace

AnswerFaults::AnswerFaults(const std::string &shownAddress, bool isOpening)
    : name('"' + shownAddress + '"')
    , ofServer("The server of " + name)
    , isOpening(isOpening)
{
}

CError AnswerFaults::unusable(const std::string &fault) const
{
    return {PLK_ERR_SERVER, ofServer + " answers with what cannot be used: " + fault + '.'};
}

CError AnswerFaults::changed() const
{
    return {PLK_ERR_FILE_CHANGED, "The file " + name + " was changed on the server. Open it again."};
}

bool AnswerFaults::mayConcernSeveral(int status)
{
    return status >= 300 && status != 412 && status != 429;
}

void AnswerFaults::refuseSeveral(const HttpAnswer &answer, const std::string &fault, FetchRound *round) const
{
    const bool isPassing = isTransient(answer.status);
    if (round->several != FetchRound::Several::Refused)
        round->several = isPassing ? FetchRound::Several::Doubted : FetchRound::Several::Refused;
    round->pause = std::max(round->pause, isPassing ? retryAfter(answer) : -1);
    round->isFallback = round->pause < 0;
    round->trouble = {isOpening ? PLK_ERR_UNREACHABLE : PLK_ERR_CONNECTION_LOST,
                      ofServer + " does not give several ranges at once: " + fault + '.'};
}

/// What an answer's status says for good; success where another try may help.
CError AnswerFaults::statusError(int status) const
{
    switch (status) {
    case 401: // of the server, 407 of a proxy before it (RFC 9110 15.5.2, 15.5.8)
    case 407:
        return {PLK_ERR_NO_ACCESS, ofServer + " wants a user name and password, or does not accept these."};
    case 403:
        return {PLK_ERR_NO_ACCESS, ofServer + " does not allow to read it."};
    case 404:
    case 410:
        if (isOpening)
            return {PLK_ERR_NOT_FOUND, "There is no file " + name + " on the server."};
        return {PLK_ERR_FILE_CHANGED, "The file " + name + " vanished from the server while it was open."};
    case 412: // the condition failed, or the file is shorter now than what is asked for (RFC 9110 15.5.13, 15.5.17)
    case 416:
        if (!isOpening)
            return changed();
        break;
    default:
        break;
    }
    if (status < 300 || isTransient(status))
        return {};
    return {PLK_ERR_SERVER, ofServer + " answers with status " + std::to_string(status) + ", which does not help."};
}

CError AnswerFaults::judge(const HttpAnswer &answer, FetchRound *round) const
{
    const int lostCode = isOpening ? PLK_ERR_UNREACHABLE : PLK_ERR_CONNECTION_LOST;
    if (answer.outcome == HttpOutcome::Distrusted)
        return {PLK_ERR_UNTRUSTED,
                ofServer + " cannot prove that it is the one it claims to be: " + answer.failure + '.'};
    if (answer.outcome == HttpOutcome::Invalid)
        return unusable(answer.failure);
    if (CError error = statusError(answer.status))
        return error;
    round->isTimeOut = round->isTimeOut || answer.outcome == HttpOutcome::TimedOut;
    if (isTransient(answer.status)) {
        round->pause = std::max(round->pause, retryAfter(answer));
        round->trouble = {lostCode,
                          ofServer + " is out of service at present (status " + std::to_string(answer.status) + ")."};
    } else if (answer.status != 0 && answer.outcome == HttpOutcome::Complete) {
        return {PLK_ERR_SERVER,
                ofServer + " answers with status " + std::to_string(answer.status) + ", which does not help."};
    } else if (isOpening) {
        const char *const what = answer.status == 0 ? " cannot be reached: " : " broke off: ";
        round->trouble = {lostCode, ofServer + what + answer.failure + '.'};
    } else {
        round->trouble = {lostCode, "The connection to the server of " + name + " is lost: " + answer.failure + '.'};
    }
    return {};
}

} // namespace xrv
