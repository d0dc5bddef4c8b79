#pragma once

#include <QDockWidget>

class QComboBox;
class QTreeView;

namespace Viewer {

class LogModel;

/// Shows the host's log and chooses how much of it is kept.
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
    void copySelection();

    LogModel *model;
    QTreeView *table;
    QComboBox *levels;
    bool isAtEnd = true;
};

} // namespace Viewer
