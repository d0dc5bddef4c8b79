#include "sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace {

sockaddr_in loopback(int port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    return address;
}

const sockaddr *general(const sockaddr_in &address)
{
    return reinterpret_cast<const sockaddr *>(&address);
}

} // namespace

int listenOn(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const int yes = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    const sockaddr_in address = loopback(port);
    if (socket < 0 || ::bind(socket, general(address), sizeof address) != 0 || ::listen(socket, 64) != 0)
        throw std::runtime_error("No socket can be listened on.");
    return socket;
}

int freePort()
{
    const int socket = listenOn(0);
    sockaddr_in address{};
    socklen_t size = sizeof address;
    ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &size);
    ::close(socket);
    return ntohs(address.sin_port);
}

int connectTo(int port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = loopback(port);
    if (::connect(socket, general(address), sizeof address) != 0) {
        ::close(socket);
        return -1;
    }
    const int yes = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
    return socket;
}
