#pragma once

#include <QList>
#include <QObject>

class QAction;
class QActionGroup;
class QDockWidget;
class QKeySequence;
class QMainWindow;
class QMenu;
class QToolBar;

namespace Viewer {

namespace Icons {
enum class Shape;
}

/// The main window's own actions, menus and tool bar. What the actions do is connected by whoever does it.
class MainActions : public QObject
{
    Q_OBJECT

public:
    explicit MainActions(QMainWindow *window);

    QAction *open = nullptr;
    QAction *openInNewView = nullptr;
    QAction *newView = nullptr;
    QAction *openProject = nullptr;
    QAction *saveProject = nullptr;
    QAction *saveProjectAs = nullptr;
    QAction *savePicture = nullptr;
    QAction *copyPicture = nullptr;
    QAction *preferences = nullptr;
    QAction *quit = nullptr;
    QAction *zoomIn = nullptr;
    QAction *zoomOut = nullptr;
    QAction *zoomToAll = nullptr;
    QAction *zoomToLayer = nullptr;
    QAction *zoomToNative = nullptr;
    QAction *goTo = nullptr;
    QAction *back = nullptr;
    QAction *forward = nullptr;
    QAction *layerProperties = nullptr;
    QAction *fullScreen = nullptr;
    QAction *nextPanel = nullptr;
    QAction *previousPanel = nullptr;
    QAction *tabs = nullptr;
    QAction *cascade = nullptr;
    QAction *tile = nullptr;
    QAction *nextView = nullptr;
    QAction *renameView = nullptr;
    QAction *closeView = nullptr;
    QAction *about = nullptr;
    QAction *aboutToolkit = nullptr;

    QMenu *recentMenu = nullptr;
    QMenu *recentProjectsMenu = nullptr;
    QToolBar *toolBar = nullptr;

    /// Puts the plug-ins' actions into the File menu.
    void addFileActions(const QList<QAction *> &actions);
    /// Puts what can be shown and hidden into the View menu.
    void addToggles(const QList<QDockWidget *> &docks, const QList<QToolBar *> &toolBars);
    /// Enables what the present state allows.
    void update(bool hasView, bool hasLayer);

private:
    QAction *make(const QString &text, const QString &statusTip = QString());
    QAction *make(Icons::Shape shape, const QString &text, const QString &statusTip);
    void makeFileActions();
    void makeViewActions();
    void makeWindowActions();
    void makeMenus();
    void makeFileMenu();
    void makeToolBar();

    QMainWindow *window;
    QAction *pluginActionsPlace = nullptr;
    QMenu *fileMenu = nullptr;
    QMenu *viewMenu = nullptr;
};

} // namespace Viewer
