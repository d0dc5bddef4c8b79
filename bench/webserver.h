#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>

/// What a web server was asked for.
struct Traffic
{
    int requests = 0;
    std::uint64_t bytes = 0; ///< of the answers' bodies
};

/// An nginx of its own that serves a folder on a free port of this machine, until it is destroyed. Failures are
/// std::runtime_error.
class WebServer
{
public:
    enum class Kind {
        Plain,
        SingleRangesOverHttp2 ///< secure, with a certificate of its own for "localhost"
    };
    explicit WebServer(const std::string &folder, Kind kind = Kind::Plain);
    ~WebServer();
    WebServer(const WebServer &) = delete;
    WebServer &operator=(const WebServer &) = delete;

    int port() const { return listenPort; }
    std::string certificateFile() const { return home + "/certificate"; }
    /// Since the last call. Waits until the server has written what it did.
    Traffic takeTraffic();

private:
    void writeConfiguration(const std::string &folder, Kind kind) const;
    void waitUntilReady() const;

    std::string home; ///< of its own files
    int listenPort = 0;
    pid_t process = -1;
    std::streamoff logPosition = 0;
};
