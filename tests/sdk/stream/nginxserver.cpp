#include "nginxserver.h"

#include "loopback.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <unistd.h>

namespace {

constexpr int kStartTimeout = 10000; // milliseconds

QString program()
{
    return QStandardPaths::findExecutable(QStringLiteral("nginx"),
                                          {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")});
}

} // namespace

bool NginxServer::isInstalled()
{
    return !program().isEmpty();
}

NginxServer::~NginxServer()
{
    stop();
}

bool NginxServer::writeConfig(const QString &folder) const
{
    QString text =
        QStringLiteral(
            "daemon off;\nworker_processes 1;\npid %1/pid;\nerror_log %1/errors;\nevents {}\n"
            "http {\n  log_format asked '$status $body_bytes_sent $http_range $server_protocol';\n"
            "  access_log %1/asked asked;\n"
            "  client_body_temp_path %1/t1;\n  proxy_temp_path %1/t2;\n"
            "  fastcgi_temp_path %1/t3;\n  uwsgi_temp_path %1/t4;\n  scgi_temp_path %1/t5;\n"
            "  server { listen 127.0.0.1:%2%4; root %3; %5 location /away/ { return 302 http://127.0.0.1/; } }\n}\n")
            .arg(place.path())
            .arg(listeningPort)
            .arg(folder)
            .arg(isSecure ? QStringLiteral(" ssl http2; ssl_certificate %1/certificate; "
                                           "ssl_certificate_key %1/key")
                                .arg(place.path())
                          : QString(),
                 serverDirectives);
    if (::geteuid() == 0)
        text.prepend(QStringLiteral("user root;\n")); // else its workers may not read temporary folders
    QFile file(filePath(QStringLiteral("config")));
    return file.open(QIODevice::WriteOnly) && file.write(text.toUtf8()) > 0;
}

bool NginxServer::start(const QString &folder)
{
    if (listeningPort == 0)
        listeningPort = freeLoopbackPort();
    if (!place.isValid() || !writeConfig(folder))
        return false;
    process.start(program(),
                  {QStringLiteral("-p"), place.path(), QStringLiteral("-e"), filePath(QStringLiteral("errors")),
                   QStringLiteral("-c"), filePath(QStringLiteral("config"))});
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < kStartTimeout) {
        if (acceptsConnections(listeningPort))
            return true;
        if (process.waitForFinished(10))
            break; // it does not work here
    }
    return false;
}

bool NginxServer::makeSecure()
{
    QProcess openssl;
    openssl.start(QStringLiteral("openssl"),
                  {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"), QStringLiteral("ec"),
                   QStringLiteral("-pkeyopt"), QStringLiteral("ec_paramgen_curve:prime256v1"), QStringLiteral("-nodes"),
                   QStringLiteral("-days"), QStringLiteral("2"), QStringLiteral("-subj"),
                   QStringLiteral("/CN=localhost"), QStringLiteral("-addext"),
                   QStringLiteral("subjectAltName=DNS:localhost"), QStringLiteral("-keyout"),
                   filePath(QStringLiteral("key")), QStringLiteral("-out"), certificateFile()});
    isSecure = openssl.waitForStarted() && openssl.waitForFinished() && openssl.exitCode() == 0;
    return isSecure;
}

void NginxServer::stop()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    process.waitForFinished();
}

std::string NginxServer::address(const QString &name) const
{
    const QString server = isSecure ? QStringLiteral("xrvps://localhost") : QStringLiteral("xrvp://127.0.0.1");
    return QStringLiteral("%1:%2/%3").arg(server).arg(listeningPort).arg(name).toStdString();
}

QStringList NginxServer::takeLog()
{
    // A line is written when its request is over, which may be just after its last byte came.
    QStringList lines;
    QElapsedTimer timer;
    timer.start();
    do {
        process.waitForFinished(20); // unless it was stopped
        QFile file(filePath(QStringLiteral("asked")));
        if (file.open(QIODevice::ReadOnly))
            lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    } while (lines.size() == linesTaken && timer.elapsed() < 500);
    const QStringList fresh = lines.mid(linesTaken);
    linesTaken = lines.size();
    return fresh;
}
