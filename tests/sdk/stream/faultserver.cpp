#include "faultserver.h"

#include "loopback.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::string lower(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return text;
}

FaultServer::Request parse(const std::string &head)
{
    FaultServer::Request request;
    std::istringstream stream(head);
    std::string line;
    std::getline(stream, line);
    std::istringstream(line) >> request.method >> request.target;
    while (std::getline(stream, line) && line != "\r") {
        const std::size_t colon = line.find(": ");
        if (colon != std::string::npos)
            request.headers[lower(line.substr(0, colon))] = line.substr(colon + 2, line.size() - colon - 3);
    }
    std::istringstream ranges(request.header("range").substr(0, 6) == "bytes=" ? request.header("range").substr(6)
                                                                               : "");
    while (std::getline(ranges, line, ','))
        request.ranges.emplace_back(std::stoull(line), std::stoull(line.substr(line.find('-') + 1)));
    return request;
}

} // namespace

bool FaultServer::Connection::send(const std::string &bytes) const
{
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t sent = ::send(socket, bytes.data() + done, bytes.size() - done, MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        done += static_cast<std::size_t>(sent);
    }
    return true;
}

void FaultServer::Connection::reset() const
{
    linger(20); // what was sent before shall arrive
    const struct linger none = {1, 0};
    ::setsockopt(socket, SOL_SOCKET, SO_LINGER, &none, sizeof none);
}

bool FaultServer::Connection::linger(int milliseconds) const
{
    pollfd waited = {socket, POLLRDHUP, 0};
    return ::poll(&waited, 1, milliseconds) == 0;
}

FaultServer::FaultServer(Handler requestHandler)
    : port(freeLoopbackPort())
    , handler(std::move(requestHandler))
{
    start();
}

FaultServer::~FaultServer()
{
    stop();
}

void FaultServer::start()
{
    stopping = false;
    listener = ::socket(AF_INET, SOCK_STREAM, 0);
    const int yes = 1;
    ::setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        ::listen(listener, 64) != 0)
        std::terminate();
    acceptor = std::thread([this] { acceptAll(); });
}

void FaultServer::stop()
{
    if (stopping.exchange(true))
        return;
    ::shutdown(listener, SHUT_RDWR);
    acceptor.join();
    ::close(listener);
    std::list<std::thread> ending;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        for (const int socket : sockets)
            ::shutdown(socket, SHUT_RDWR);
        ending.swap(threads);
    }
    for (std::thread &thread : ending)
        thread.join();
}

void FaultServer::setHandler(Handler requestHandler)
{
    const std::lock_guard<std::mutex> lock(mutex);
    handler = std::move(requestHandler);
}

void FaultServer::acceptAll()
{
    while (!stopping) {
        const int socket = ::accept(listener, nullptr, nullptr);
        if (socket < 0)
            return;
        const int yes = 1;
        ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
        const std::lock_guard<std::mutex> lock(mutex);
        sockets.push_back(socket);
        threads.emplace_back([this, socket] { serve(socket); });
    }
}

void FaultServer::serve(int socket)
{
    std::string head;
    char buffer[4096];
    bool goesOn = !stopping;
    while (goesOn) {
        const ssize_t got = ::recv(socket, buffer, sizeof buffer, 0);
        if (got <= 0)
            break;
        head.append(buffer, static_cast<std::size_t>(got));
        const std::size_t end = head.find("\r\n\r\n");
        if (end == std::string::npos)
            continue;
        goesOn = answer(head.substr(0, end + 4), socket);
        head.erase(0, end + 4);
    }
    const std::lock_guard<std::mutex> lock(mutex);
    sockets.erase(std::find(sockets.begin(), sockets.end(), socket));
    ::close(socket);
}

bool FaultServer::answer(const std::string &head, int socket)
{
    const Request request = parse(head);
    Handler current;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        requests.push_back(request);
        current = handler;
    }
    const bool goesOn = current(request, Connection(socket));
    return goesOn && !stopping;
}

std::string FaultServer::url() const
{
    return "http://127.0.0.1:" + std::to_string(port);
}

std::string FaultServer::address(const std::string &path, const std::string &user) const
{
    return "xrvp://" + user + (user.empty() ? "" : "@") + "127.0.0.1:" + std::to_string(port) + path;
}

std::vector<FaultServer::Request> FaultServer::takeRequests()
{
    const std::lock_guard<std::mutex> lock(mutex);
    return std::exchange(requests, {});
}
