#include "servercredentials.h"

#include <QHash>

namespace Korvane::Gui {

namespace {

QHash<QString, QString> &byServer()
{
    static QHash<QString, QString> kByServer;
    return kByServer;
}

QString serverOf(const QUrl &url)
{
    const int usualPort = url.scheme() == QLatin1String("https") ? 443 : 80;
    return QStringLiteral("%1://%2:%3").arg(url.scheme(), url.host()).arg(url.port(usualPort));
}

} // namespace

void ServerCredentials::remember(const QUrl &url, const QString &credentials)
{
    if (!credentials.isEmpty())
        byServer()[serverOf(url)] = credentials;
}

QString ServerCredentials::of(const QUrl &url)
{
    return byServer().value(serverOf(url));
}

} // namespace Korvane::Gui
