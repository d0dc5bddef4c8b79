#include "webfile.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <random>

std::string httpAnswer(const std::string &status, const std::string &headers, const std::string &body)
{
    return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" + headers + "\r\n" +
           body;
}

WebFile WebFile::make(std::size_t size, unsigned seed)
{
    WebFile file;
    std::mt19937 random(seed);
    file.bytes.resize(size);
    std::generate(file.bytes.begin(), file.bytes.end(), [&] { return static_cast<char>(random()); });
    return file;
}

std::string WebFile::versionHeaders() const
{
    return (tag.empty() ? "" : "ETag: " + tag + "\r\n") +
           (lastModified.empty() ? "" : "Last-Modified: " + lastModified + "\r\n");
}

std::string WebFile::contentRange(std::size_t first, std::size_t last) const
{
    return "Content-Range: bytes " + std::to_string(first) + '-' + std::to_string(last) + '/' +
           std::to_string(bytes.size()) + "\r\n";
}

std::string WebFile::singleRange(std::size_t first, std::size_t last) const
{
    return httpAnswer("206 Partial Content", versionHeaders() + contentRange(first, last), slice(first, last));
}

std::string WebFile::severalRanges(const std::vector<std::pair<std::size_t, std::size_t>> &ranges) const
{
    std::string body;
    for (const auto &[first, last] : ranges)
        body +=
            "\r\n--cut here\r\nContent-Type: image/jp2\r\n" + contentRange(first, last) + "\r\n" + slice(first, last);
    body += "\r\n--cut here--\r\n";
    return httpAnswer("206 Partial Content",
                      versionHeaders() + "Content-Type: multipart/byteranges; boundary=\"cut here\"\r\n", body);
}

std::string WebFile::whole() const
{
    return httpAnswer("200 OK", versionHeaders(), bytes);
}

std::string WebFile::answer(const FaultServer::Request &request) const
{
    if (!request.header("if-none-match").empty() && request.header("if-none-match") == tag)
        return "HTTP/1.1 304 Not Modified\r\n" + versionHeaders() + "\r\n";
    if (!request.header("if-match").empty() && request.header("if-match") != tag)
        return httpAnswer("412 Precondition Failed");
    auto ranges = request.ranges;
    if (!takesRanges || ranges.empty() || (ranges.size() > 1 && !takesSeveral))
        return whole();
    for (auto &range : ranges) {
        if (range.first >= bytes.size())
            return httpAnswer("416 Range Not Satisfiable",
                              "Content-Range: bytes */" + std::to_string(bytes.size()) + "\r\n");
        range.second = std::min(range.second, bytes.size() - 1);
    }
    return ranges.size() == 1 ? singleRange(ranges[0].first, ranges[0].second) : severalRanges(ranges);
}

FaultServer::Handler WebFile::handler() const
{
    return answering([file = *this](const FaultServer::Request &request) { return file.answer(request); });
}

FaultServer::Handler answering(const std::function<std::string(const FaultServer::Request &)> &make)
{
    return [make](const FaultServer::Request &request, const FaultServer::Connection &connection) {
        return connection.send(make(request));
    };
}

FaultServer::Handler always(const std::string &answer)
{
    return answering([answer](const FaultServer::Request &) { return answer; });
}

FaultServer::Handler silence()
{
    return [](const FaultServer::Request &, const FaultServer::Connection &connection) {
        connection.linger(20000);
        return false;
    };
}

FaultServer::Handler afterOpening(const WebFile &file, const FaultServer::Handler &next)
{
    const auto count = std::make_shared<std::atomic<int>>(0);
    return [=](const FaultServer::Request &request, const FaultServer::Connection &connection) {
        return count->fetch_add(1) == 0 ? connection.send(file.answer(request)) : next(request, connection);
    };
}
