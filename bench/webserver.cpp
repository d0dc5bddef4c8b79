#include "webserver.h"

#include "sockets.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace {

constexpr auto kPause = std::chrono::milliseconds(20);
constexpr int kMaxPauses = 250;

std::string makeHome()
{
    std::string name = (std::filesystem::temp_directory_path() / "streambench-XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr)
        throw std::runtime_error("There is no place for the web server's files.");
    return name;
}

} // namespace

WebServer::WebServer(const std::string &folder, Kind kind)
    : home(makeHome())
    , listenPort(freePort())
{
    writeConfiguration(std::filesystem::absolute(folder).string(), kind);
    process = ::fork();
    if (process == 0) {
        ::execlp("nginx", "nginx", "-p", home.c_str(), "-c", (home + "/nginx.conf").c_str(), "-e",
                 (home + "/error.log").c_str(), nullptr);
        ::_exit(127);
    }
    waitUntilReady();
}

WebServer::~WebServer()
{
    ::kill(process, SIGTERM);
    ::waitpid(process, nullptr, 0);
    std::error_code ignored;
    std::filesystem::remove_all(home, ignored);
}

/// As a distribution sets it up: nothing is tuned for images.
void WebServer::writeConfiguration(const std::string &folder, Kind kind) const
{
    const bool isSecure = kind == Kind::SingleRangesOverHttp2;
    const std::string certificate =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=localhost -addext "
        "subjectAltName=DNS:localhost -keyout '" +
        home + "/key' -out '" + certificateFile() + "' 2>/dev/null";
    if (isSecure && std::system(certificate.c_str()) != 0)
        throw std::runtime_error("No certificate can be made. Is openssl installed?");
    std::ofstream out(home + "/nginx.conf");
    out << "daemon off; worker_processes 2; pid " << home << "/nginx.pid;\n"
        << (::geteuid() == 0 ? "user root;\n" : "") << "events {}\n"
        << "http {\n"
        << "  sendfile on; tcp_nopush on; default_type application/octet-stream;\n"
        << "  log_format traffic '$body_bytes_sent $msec $status $http_range';\n"
        << "  access_log " << home << "/traffic.log traffic;\n";
    for (const char *room : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
        out << "  " << room << "_temp_path " << home << "/" << room << ";\n";
    out << "  server { listen 127.0.0.1:" << listenPort
        << (isSecure ? " ssl http2; max_ranges 1; ssl_certificate certificate; ssl_certificate_key key" : "")
        << "; root \"" << folder << "\"; }\n"
        << "}\n";
}

void WebServer::waitUntilReady() const
{
    for (int i = 0; i < kMaxPauses; ++i) {
        if (::waitpid(process, nullptr, WNOHANG) != 0)
            throw std::runtime_error("nginx does not start. Is it installed?");
        const int socket = connectTo(listenPort);
        if (socket >= 0) {
            ::close(socket);
            return;
        }
        std::this_thread::sleep_for(kPause);
    }
    throw std::runtime_error("nginx does not answer.");
}

Traffic WebServer::takeTraffic()
{
    // The log's line comes after the answer's last byte.
    std::this_thread::sleep_for(5 * kPause);
    std::ifstream log(home + "/traffic.log");
    log.seekg(logPosition);
    Traffic traffic;
    for (std::string line; std::getline(log, line);) {
        ++traffic.requests;
        traffic.bytes += std::stoull(line);
        logPosition = log.tellg();
    }
    return traffic;
}
