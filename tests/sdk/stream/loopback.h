#pragma once

#include <cstdint>

/// A TCP port of the loopback device that nobody listens on at present.
std::uint16_t freeLoopbackPort();

/// Somebody listens on \a port of the loopback device.
bool acceptsConnections(std::uint16_t port);
