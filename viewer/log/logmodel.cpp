#include "logmodel.h"

#include <QColor>
#include <QStringList>

namespace Viewer {

using Korvane::Application;

LogModel::LogModel(QObject *parent)
    : QAbstractTableModel(parent)
    , entries(Application::instance()->getLogHistory())
{
    connect(Application::instance(), &Application::messageLogged, this, &LogModel::append);
}

void LogModel::clear()
{
    beginResetModel();
    Application::instance()->clearLogHistory();
    entries.clear();
    endResetModel();
}

void LogModel::append(const QString &text, Application::LogLevel level, const QDateTime &time)
{
    if (entries.size() >= Application::kMaxLogEntries) {
        beginRemoveRows(QModelIndex(), 0, 0);
        entries.removeFirst();
        endRemoveRows();
    }
    beginInsertRows(QModelIndex(), entries.size(), entries.size());
    entries.append({text, level, time});
    endInsertRows();
}

QString LogModel::cellText(const Application::LogEntry &entry, int column) const
{
    switch (column) {
    case TimeColumn:
        return entry.time.toString(QStringLiteral("HH:mm:ss.zzz"));
    case LevelColumn:
        return Application::getLogLevelName(entry.level);
    default:
        return entry.text;
    }
}

QString LogModel::lineText(int row) const
{
    QStringList cells;
    for (int column = 0; column < ColumnCount; ++column)
        cells.append(cellText(entries.at(row), column));
    return cells.join(QLatin1Char('\t'));
}

int LogModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : entries.size();
}

int LogModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant LogModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= entries.size())
        return QVariant();
    const Application::LogEntry &entry = entries.at(index.row());
    if (role == Qt::DisplayRole)
        return cellText(entry, index.column()).simplified();
    if (role == LevelRole)
        return int(entry.level);
    if (role == Qt::ToolTipRole && index.column() == TextColumn)
        return entry.text;
    // Both are readable on light and on dark backgrounds.
    if (role == Qt::ForegroundRole && entry.level >= Application::LogError)
        return QColor(0xd0, 0x3a, 0x2f);
    if (role == Qt::ForegroundRole && entry.level == Application::LogWarning)
        return QColor(0xb0, 0x74, 0x00);
    return QVariant();
}

QVariant LogModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case TimeColumn:
        return tr("Time");
    case LevelColumn:
        return tr("Level");
    default:
        return tr("Message");
    }
}

} // namespace Viewer
