#include "logfilter.h"

#include "logmodel.h"

namespace Viewer {

LogFilter::LogFilter(QObject *parent)
    : QSortFilterProxyModel(parent)
{
}

void LogFilter::setLeastLevel(Korvane::Application::LogLevel level)
{
    leastLevel = level;
    invalidateFilter();
}

bool LogFilter::filterAcceptsRow(int row, const QModelIndex &parent) const
{
    return sourceModel()->index(row, LogModel::LevelColumn, parent).data(LogModel::LevelRole).toInt() >= leastLevel;
}

} // namespace Viewer
