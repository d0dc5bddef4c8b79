#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <string>

/// A real Varnish, as it is installed, in front of another web server of the loopback device: a cache of the kind that
/// delivery networks are made of. It answers one range at a time.
class VarnishServer
{
public:
    /// False where Varnish is not installed.
    static bool isInstalled();
    ~VarnishServer();

    /// Passes on what the server on \a backendPort has. Waits until it answers.
    bool start(quint16 backendPort);
    /// "xrvp://127.0.0.1:port/name"
    std::string address(const std::string &name) const;

private:
    QTemporaryDir place;
    QProcess process;
    quint16 port = 0;
};
