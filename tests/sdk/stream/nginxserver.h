#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A real nginx that serves a folder on a port of the loopback device, for as long as this object lives.
class NginxServer
{
public:
    /// False where nginx is not installed.
    static bool isInstalled();
    ~NginxServer();

    /// Directives for the server block, such as "autoindex on;". Before start().
    void configure(const QString &directives) { serverDirectives = directives; }
    /// Serves \a folder; what is asked for in "away/" is to be had over an open connection, it says. Waits until the
    /// server answers.
    bool start(const QString &folder);
    void stop();
    quint16 port() const { return listeningPort; }
    /// Makes a certificate for "localhost" and serves securely from then on, with HTTP/2. False where that cannot be.
    bool makeSecure();
    /// What vouches for that certificate: itself.
    QString certificateFile() const { return filePath(QStringLiteral("certificate")); }
    /// "xrvp://127.0.0.1:port/name", or "xrvps://localhost:port/name".
    std::string address(const QString &name) const;
    /// What was asked since the last call: "status body-bytes-sent end duration range-header protocol", one per
    /// request, times in seconds.
    QStringList takeLog();

private:
    bool writeConfig(const QString &folder) const;
    QString filePath(const QString &name) const { return place.filePath(name); }

    QTemporaryDir place;
    QProcess process;
    QString serverDirectives;
    quint16 listeningPort = 0;
    bool isSecure = false;
    int linesTaken = 0;
};
