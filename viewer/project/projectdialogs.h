#pragma once

#include <QObject>
#include <QString>

class QWidget;

namespace Viewer {

class ProjectController;
class RecentSources;

/// Asks a person about projects: which to open, where to save, what to do with changes.
class ProjectDialogs : public QObject
{
    Q_OBJECT

public:
    /// \a window is the dialogs' parent.
    ProjectDialogs(ProjectController *project, QWidget *window);

    RecentSources *recentProjects() const { return recent; }

    void open();
    void openFile(const QString &fileName);
    /// False when the person cancelled or the file could not be written.
    bool save();
    bool saveAs();
    /// Asks what becomes of unsaved changes to a project that has a file. False when the person wants to stay.
    bool mayDiscard();

private:
    bool saveTo(const QString &fileName);
    QString startFolder() const;

    ProjectController *project;
    QWidget *window;
    RecentSources *recent;
};

} // namespace Viewer
