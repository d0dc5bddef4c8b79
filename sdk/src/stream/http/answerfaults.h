#pragma once

#include "fetchround.h"

#include "stream/values/httpexchange.h"

#include <string>

namespace xrv {

/// What answers that bring no bytes mean, in words: an error for good, or trouble that is worth another try.
class AnswerFaults
{
public:
    /// \a shownAddress for the sentences. While the file is opened a server that fails is unreachable, and a file that
    /// is not there was never there; later a connection is lost and a file has changed.
    AnswerFaults(const std::string &shownAddress, bool isOpening);

    /// The error that \a answer is for good; otherwise success, and the trouble is in \a round.
    PLK::CError judge(const HttpAnswer &answer, FetchRound *round) const;
    /// What a server may mean for several ranges only: anything but that a condition failed (412) or that it is asked
    /// too often (429).
    static bool mayConcernSeveral(int status);
    /// Has \a round go on with single ranges after \a answer to a request for several.
    void refuseSeveral(const HttpAnswer &answer, const std::string &fault, FetchRound *round) const;
    /// An error of the server's, for good.
    PLK::CError unusable(const std::string &fault) const;
    PLK::CError changed() const;

private:
    PLK::CError statusError(int status) const;

    const std::string name, ofServer;
    const bool isOpening;
};

} // namespace xrv
