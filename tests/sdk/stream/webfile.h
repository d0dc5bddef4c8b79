#pragma once

#include "faultserver.h"

#include <string>

/// A file as a good web server would serve it, with answers put together so that tests can spoil them.
struct WebFile
{
    /// \a size bytes that differ everywhere and by \a seed.
    static WebFile make(std::size_t size, unsigned seed);

    std::string bytes;
    std::string tag = "\"v1\"";
    std::string lastModified;
    bool takesSeveral = true; ///< several ranges in one request
    bool takesRanges = true;

    /// The whole answer to \a request, head and body.
    std::string answer(const FaultServer::Request &request) const;
    /// Parts of it.
    std::string versionHeaders() const;
    std::string contentRange(std::size_t first, std::size_t last) const;
    std::string singleRange(std::size_t first, std::size_t last) const;
    std::string severalRanges(const std::vector<std::pair<std::size_t, std::size_t>> &ranges) const;
    std::string whole() const;
    std::string slice(std::size_t first, std::size_t last) const { return bytes.substr(first, last - first + 1); }

    /// Sends the answer.
    FaultServer::Handler handler() const;
};

/// A head with \a status ("404 Not Found") and further header lines, each ended, and \a body.
std::string httpAnswer(const std::string &status, const std::string &headers = {}, const std::string &body = {});

/// Answers with what \a make makes of the request.
FaultServer::Handler answering(const std::function<std::string(const FaultServer::Request &)> &make);
/// The same answer to every request.
FaultServer::Handler always(const std::string &answer);
/// Never answers.
FaultServer::Handler silence();
/// As \a file would be served to the first request, which opens it, and by \a next from then on.
FaultServer::Handler afterOpening(const WebFile &file, const FaultServer::Handler &next);
