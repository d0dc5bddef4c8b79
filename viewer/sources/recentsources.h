#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class QMenu;
class QSettings;

namespace Viewer {

/// Files, addresses and projects opened lately, newest first, kept in the settings. User names and passwords in
/// addresses are not kept.
class RecentSources : public QObject
{
    Q_OBJECT

public:
    /// Reads and writes \a settings, which must outlive it, under \a key.
    RecentSources(QSettings *settings, QString key, QObject *parent = nullptr);

    QStringList entries() const;
    void add(const QString &source);
    void remove(const QString &source);
    void clear();
    /// Fills \a menu with the entries whenever it opens, and disables it while there are none.
    void fill(QMenu *menu);

    static constexpr int kMaxSources = 10;

Q_SIGNALS:
    void chosen(const QString &source);
    void changed();

private:
    void store(const QStringList &sources);
    void refill(QMenu *menu);

    QSettings *settings;
    QString key;
};

} // namespace Viewer
