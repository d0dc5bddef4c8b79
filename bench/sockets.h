#pragma once

/// A port of this machine that nobody listens on. Failures are std::runtime_error.
int freePort();
/// A socket that listens on \a port of this machine. Failures are std::runtime_error.
int listenOn(int port);
/// A socket that is connected to \a port of this machine; negative when nobody listens there.
int connectTo(int port);
