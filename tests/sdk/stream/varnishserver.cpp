#include "varnishserver.h"

#include "loopback.h"

#include <QElapsedTimer>
#include <QStandardPaths>

namespace {

constexpr int kStartTimeout = 20000; // milliseconds: it compiles its configuration

QString program()
{
    return QStandardPaths::findExecutable(QStringLiteral("varnishd"),
                                          {QStringLiteral("/usr/sbin"), QStringLiteral("/usr/local/sbin")});
}

} // namespace

bool VarnishServer::isInstalled()
{
    return !program().isEmpty();
}

bool VarnishServer::start(quint16 backendPort)
{
    port = freeLoopbackPort();
    process.start(program(), {QStringLiteral("-F"), QStringLiteral("-n"), place.filePath(QStringLiteral("work")),
                              QStringLiteral("-a"), QStringLiteral("127.0.0.1:%1").arg(port), QStringLiteral("-b"),
                              QStringLiteral("127.0.0.1:%1").arg(backendPort), QStringLiteral("-s"),
                              QStringLiteral("malloc,16m"), QStringLiteral("-j"), QStringLiteral("none")});
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < kStartTimeout && !process.waitForFinished(10))
        if (acceptsConnections(port))
            return true;
    return false;
}

VarnishServer::~VarnishServer()
{
    if (process.state() == QProcess::NotRunning)
        return;
    process.terminate();
    process.waitForFinished();
}

std::string VarnishServer::address(const std::string &name) const
{
    return "xrvp://127.0.0.1:" + std::to_string(port) + '/' + name;
}
