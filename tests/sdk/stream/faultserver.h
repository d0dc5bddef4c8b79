#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// A web server on a port of the loopback device that answers as it is told to, on a thread per connection.
class FaultServer
{
public:
    struct Request
    {
        std::string method, target;
        std::map<std::string, std::string> headers;              ///< names in lower case
        std::vector<std::pair<std::size_t, std::size_t>> ranges; ///< first and last byte, as asked for

        std::string header(const std::string &name) const
        {
            const auto found = headers.find(name);
            return found == headers.end() ? std::string() : found->second;
        }
    };

    class Connection
    {
    public:
        explicit Connection(int openSocket)
            : socket(openSocket)
        {
        }
        /// False when the other side is gone.
        bool send(const std::string &bytes) const;
        /// Ends the connection with a reset instead of an orderly close.
        void reset() const;
        /// Until the other side goes away, the server stops, or \a milliseconds are over; true in the last case.
        bool linger(int milliseconds) const;

    private:
        const int socket;
    };

    /// Answers a request; false ends the connection. Called on many threads at once.
    using Handler = std::function<bool(const Request &, const Connection &)>;

    explicit FaultServer(Handler requestHandler);
    ~FaultServer();

    /// Ends all connections and listens no more, until start() listens on the same port again.
    void stop();
    void start();
    void setHandler(Handler requestHandler);

    /// "http://127.0.0.1:port"
    std::string url() const;
    /// "xrvp://[user@]127.0.0.1:port/path"
    std::string address(const std::string &path, const std::string &user = {}) const;
    /// What was asked since the last call.
    std::vector<Request> takeRequests();

private:
    void acceptAll();
    void serve(int socket);
    bool answer(const std::string &head, int socket);

    std::uint16_t port = 0;
    int listener = -1;
    std::atomic<bool> stopping{false};
    std::thread acceptor;
    std::mutex mutex; ///< guards the members below
    Handler handler;
    std::vector<Request> requests;
    std::list<std::thread> threads;
    std::vector<int> sockets;
};
