#include "recentsources.h"

#include "sources.h"

#include <QDir>
#include <QMenu>
#include <QSettings>

#include <utility>

namespace Viewer {

RecentSources::RecentSources(QSettings *settings, QString key, QObject *parent)
    : QObject(parent)
    , settings(settings)
    , key(std::move(key))
{
}

QStringList RecentSources::entries() const
{
    // The settings file is open to anyone's editor.
    QStringList sources = settings->value(key).toStringList();
    sources.removeAll(QString());
    sources.removeDuplicates();
    return sources.mid(0, kMaxSources);
}

void RecentSources::add(const QString &source)
{
    QStringList sources = entries();
    const QString stored = Sources::withoutCredentials(source);
    sources.removeAll(stored);
    sources.prepend(stored);
    store(sources.mid(0, kMaxSources));
}

void RecentSources::remove(const QString &source)
{
    QStringList sources = entries();
    if (sources.removeAll(Sources::withoutCredentials(source)) > 0)
        store(sources);
}

void RecentSources::clear()
{
    store(QStringList());
}

void RecentSources::store(const QStringList &sources)
{
    settings->setValue(key, sources);
    Q_EMIT changed();
}

void RecentSources::fill(QMenu *menu)
{
    // Not refilled on a change at once: that would delete the action that is just being triggered.
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { refill(menu); });
    const auto updateEnabled = [this, menu] { menu->setEnabled(!entries().isEmpty()); };
    connect(this, &RecentSources::changed, menu, updateEnabled);
    updateEnabled();
}

void RecentSources::refill(QMenu *menu)
{
    menu->clear();
    const QStringList sources = entries();
    int number = 1;
    for (const QString &source : sources) {
        QString name = Sources::isAddress(source) ? Sources::shown(source) : QDir::toNativeSeparators(source);
        name.replace(QLatin1Char('&'), QLatin1String("&&"));
        const QString mnemonic = number < 10 ? QStringLiteral("&%1  ").arg(number) : QString();
        QAction *action = menu->addAction(mnemonic + name);
        connect(action, &QAction::triggered, this, [this, source] { Q_EMIT chosen(source); });
        ++number;
    }
    menu->addSeparator();
    connect(menu->addAction(tr("&Clear List")), &QAction::triggered, this, &RecentSources::clear);
}

} // namespace Viewer
