#include "servercredentials.h"

#include <QHash>

namespace Korvane::Gui {

namespace {

QHash<QString, QString> &byServer()
{
    static QHash<QString, QString> kByServer;
    return kByServer;
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
