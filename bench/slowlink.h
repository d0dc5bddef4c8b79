#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>

/// A port of this machine that leads to another one by way of a link like those out in the world: every byte takes half
/// the round trip, and all connections together get no more than so many bits per second towards the client.
class SlowLink
{
public:
    SlowLink(int serverPort, int roundTripMilliseconds, double megabitsPerSecond);
    ~SlowLink();
    SlowLink(const SlowLink &) = delete;
    SlowLink &operator=(const SlowLink &) = delete;

    int port() const { return listenPort; }
    int connections() const { return totals->connections; }
    /// Towards the client, whether it took them or not.
    std::uint64_t bytes() const { return totals->bytes; }

private:
    struct Connection;
    struct Pace;
    struct Totals
    {
        std::atomic<int> connections{0};
        std::atomic<std::uint64_t> bytes{0};
    };
    void accept();

    const int serverPort;
    const int delayMilliseconds; ///< one way
    const double bytesPerSecond;
    int listenPort = 0;
    int listener = -1;
    const std::shared_ptr<Totals> totals = std::make_shared<Totals>();
    std::thread acceptor;
};
