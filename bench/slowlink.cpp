#include "slowlink.h"

#include "sockets.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

using Clock = std::chrono::steady_clock;

/// When the next bytes have gone through the link, which all connections share.
struct SlowLink::Pace
{
    explicit Pace(double bytesPerSecond)
        : bytesPerSecond(bytesPerSecond)
    {
    }
    Clock::time_point send(std::size_t bytes)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto takes = std::chrono::duration<double>(static_cast<double>(bytes) / bytesPerSecond);
        free = std::max(free, Clock::now()) + std::chrono::duration_cast<Clock::duration>(takes);
        return free;
    }
    const double bytesPerSecond;
    std::mutex mutex; ///< guards free
    Clock::time_point free;
};

/// Both directions of one client's connection. Lives as long as its threads.
struct SlowLink::Connection
{
    Connection(int client, int server)
        : client(client)
        , server(server)
    {
    }
    ~Connection()
    {
        ::close(client);
        ::close(server);
    }
    const int client, server;
};

namespace {

constexpr std::size_t kSmallestWindow = 65536;

/// Bytes on their way, in order, with the time of their arrival.
class Pipe
{
public:
    explicit Pipe(std::size_t most)
        : maxQueued(most)
    {
    }
    void put(std::vector<char> bytes, Clock::time_point arrival)
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return queued < maxQueued; });
        queued += bytes.size();
        queue.push_back({std::move(bytes), arrival});
        changed.notify_all();
    }
    /// Empty when no more will come.
    std::vector<char> take()
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return !queue.empty(); });
        Piece piece = std::move(queue.front());
        queue.pop_front();
        queued -= piece.bytes.size();
        changed.notify_all();
        lock.unlock();
        std::this_thread::sleep_until(piece.arrival);
        return std::move(piece.bytes);
    }

private:
    struct Piece
    {
        std::vector<char> bytes;
        Clock::time_point arrival;
    };
    const std::size_t maxQueued;
    std::mutex mutex; ///< guards what follows
    std::condition_variable changed;
    std::deque<Piece> queue;
    std::size_t queued = 0;
};

void sendAll(int socket, const std::vector<char> &bytes)
{
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = ::send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0)
            return;
        sent += static_cast<std::size_t>(count);
    }
}

/// Hands on what comes in at \a from until it ends. \a arrivalOf says when so many bytes arrive at the other end, and
/// \a arrived is told that they did.
template <typename Owner, typename ArrivalOf, typename Arrived>
void carry(const std::shared_ptr<Owner> &owner, int from, int to, std::size_t window, ArrivalOf arrivalOf,
           Arrived arrived)
{
    const auto pipe = std::make_shared<Pipe>(window);
    const int size = static_cast<int>(window);
    ::setsockopt(from, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    std::thread([owner, pipe, to, arrived] {
        for (std::vector<char> bytes = pipe->take(); !bytes.empty(); bytes = pipe->take()) {
            arrived(bytes.size());
            sendAll(to, bytes);
        }
        ::shutdown(to, SHUT_WR);
    }).detach();
    std::thread([owner, pipe, from, arrivalOf] {
        std::vector<char> buffer(8192);
        for (ssize_t count; (count = ::recv(from, buffer.data(), buffer.size(), 0)) > 0;)
            pipe->put({buffer.begin(), buffer.begin() + count}, arrivalOf(static_cast<std::size_t>(count)));
        pipe->put({}, Clock::now());
    }).detach();
}

} // namespace

SlowLink::SlowLink(int port, int roundTripMilliseconds, double megabitsPerSecond)
    : serverPort(port)
    , delayMilliseconds(roundTripMilliseconds / 2)
    , bytesPerSecond(megabitsPerSecond * 1e6 / 8)
    , listenPort(freePort())
    , listener(listenOn(listenPort))
    , acceptor([this] { accept(); })
{
}

SlowLink::~SlowLink()
{
    ::shutdown(listener, SHUT_RDWR);
    acceptor.join();
    ::close(listener);
}

void SlowLink::accept()
{
    const auto pace = std::make_shared<Pace>(bytesPerSecond);
    const auto delay = std::chrono::milliseconds(delayMilliseconds);
    // As much as is on its way where a sender goes by what the link carries: twice what it holds.
    const auto window =
        std::max(kSmallestWindow, static_cast<std::size_t>(bytesPerSecond * 4 * delayMilliseconds / 1000));
    for (int client; (client = ::accept(listener, nullptr, nullptr)) >= 0;) {
        // The handshake takes a round trip before the client may speak.
        const auto connection = std::make_shared<Connection>(client, connectTo(serverPort));
        const auto established = Clock::now() + 2 * delay;
        carry(
            connection, client, connection->server, window,
            [=](std::size_t) { return std::max(Clock::now(), established) + delay; }, [](std::size_t) {});
        ++totals->connections;
        carry(
            connection, connection->server, client, window,
            [=](std::size_t bytes) { return pace->send(bytes) + delay; },
            [counted = totals](std::size_t bytes) { counted->bytes += bytes; });
    }
}
