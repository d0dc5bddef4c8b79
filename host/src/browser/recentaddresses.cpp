#include "recentaddresses.h"

#include <QDGui/addressutil.h>
#include <QDGui/application.h>

#include <QSettings>

namespace Korvane::Gui {

namespace {

const QLatin1String kKey("XRVPBrowser/RecentAddresses");

void store(const QStringList &addresses)
{
    Application::instance()->settings()->setValue(kKey, addresses);
}

} // namespace

QStringList RecentAddresses::entries()
{
    // The settings file is open to anyone's editor.
    const QStringList stored = Application::instance()->settings()->value(kKey).toStringList();
    QStringList addresses;
    for (const QString &address : stored)
        addresses.append(Util::Address::withoutCredentials(address));
    addresses.removeAll(QString());
    addresses.removeDuplicates();
    return addresses.mid(0, kMaxAddresses);
}

void RecentAddresses::add(const QString &address)
{
    QStringList addresses = entries();
    const QString stored = Util::Address::withoutCredentials(address);
    addresses.removeAll(stored);
    addresses.prepend(stored);
    store(addresses.mid(0, kMaxAddresses));
}

void RecentAddresses::remove(const QString &address)
{
    QStringList addresses = entries();
    if (addresses.removeAll(Util::Address::withoutCredentials(address)) > 0)
        store(addresses);
}

void RecentAddresses::clear()
{
    store(QStringList());
}

} // namespace Korvane::Gui
