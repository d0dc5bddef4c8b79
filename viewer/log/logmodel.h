#pragma once

#include <QDGui/application.h>

#include <QAbstractTableModel>
#include <QVector>

namespace Viewer {

/// The host's log as a table, the newest line last: time, level, text. Holds at most as many lines as the host keeps.
class LogModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { TimeColumn, LevelColumn, TextColumn, ColumnCount };
    static constexpr int LevelRole = Qt::UserRole; ///< the level as a number

    explicit LogModel(QObject *parent = nullptr);

    void clear();
    /// The line as text, its columns separated by tabs.
    QString lineText(int row) const;

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    void append(const QString &text, Korvane::Application::LogLevel level, const QDateTime &time);
    QString cellText(const Korvane::Application::LogEntry &entry, int column) const;

    QVector<Korvane::Application::LogEntry> entries;
};

} // namespace Viewer
