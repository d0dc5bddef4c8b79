#pragma once

#include <QDGui/application.h>

#include <QSortFilterProxyModel>

namespace Viewer {

/// The lines of a LogModel that are at least as severe as a level.
class LogFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit LogFilter(QObject *parent = nullptr);

    void setLeastLevel(Korvane::Application::LogLevel level);

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    Korvane::Application::LogLevel leastLevel = Korvane::Application::LogDebug;
};

} // namespace Viewer
