#pragma once

#include <QDockWidget>

class QComboBox;
class QTreeView;

namespace Viewer {

class LogFilter;
class LogModel;

/// Shows the host's log from a level on, which is also the least one that is logged from then on. Lines below it that
/// are there already come back when the level is lowered again.
class LogDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit LogDock(QWidget *parent = nullptr);

private:
    void makeTable();
    QWidget *makeBar();
    void fillLevels();
    void onRowsAboutToBeInserted();
    void onRowsInserted();
    void setLevel(int level);
    void copyLines();

    LogModel *model;
    LogFilter *shown;
    QTreeView *table;
    QComboBox *levels;
    bool isAtEnd = true;
};

} // namespace Viewer
