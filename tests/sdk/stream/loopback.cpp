#include "loopback.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

sockaddr_in addressOf(std::uint16_t port)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

std::uint16_t freeLoopbackPort()
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = addressOf(0);
    socklen_t length = sizeof address;
    ::bind(socket, reinterpret_cast<sockaddr *>(&address), length);
    ::getsockname(socket, reinterpret_cast<sockaddr *>(&address), &length);
    ::close(socket);
    return ntohs(address.sin_port);
}

bool acceptsConnections(std::uint16_t port)
{
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    const sockaddr_in address = addressOf(port);
    const bool accepts = ::connect(socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
    ::close(socket);
    return accepts;
}
