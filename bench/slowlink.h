#pragma once

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

private:
    struct Connection;
    struct Pace;
    void accept();

    const int serverPort;
    const int delayMilliseconds; ///< one way
    const double bytesPerSecond;
    int listenPort = 0;
    int listener = -1;
    std::thread acceptor;
};
