#include "mainactions.h"

#include "appearance/icons.h"

#include <QAction>
#include <QDockWidget>
#include <QGuiApplication>
#include <QMainWindow>
#include <QMenuBar>
#include <QRegularExpression>
#include <QToolBar>

namespace Viewer {

using Icons::Shape;

namespace {

/// What of a menu's \a text a tool tip shows: no dots, no mark of a mnemonic, which some languages have in brackets.
QString tipText(QString text)
{
    static const QRegularExpression kMarks(QStringLiteral("\\(&.\\)|&|\\.\\.\\.\\z"));
    return text.remove(kMarks);
}

} // namespace

MainActions::MainActions(QMainWindow *window)
    : QObject(window)
    , window(window)
{
    makeFileActions();
    makeViewActions();
    makeWindowActions();
    makeMenus();
    makeToolBar();
    update(false, false);
}

QAction *MainActions::make(const QString &text, const QString &statusTip)
{
    auto *action = new QAction(text, this);
    action->setToolTip(tipText(text));
    action->setStatusTip(statusTip);
    return action;
}

QAction *MainActions::make(Shape shape, const QString &text, const QString &statusTip)
{
    QAction *action = make(text, statusTip);
    action->setIcon(Icons::icon(shape));
    return action;
}

void MainActions::makeFileActions()
{
    open = make(Shape::Open, tr("&Open..."), tr("Open images in the current view"));
    open->setShortcut(QKeySequence::Open);
    openInNewView = make(tr("Open in Ne&w View..."), tr("Open images in a view of their own"));
    openInNewView->setShortcut(QStringLiteral("Ctrl+Shift+O"));
    newView = make(Shape::NewView, tr("&New View"), tr("Add an empty map view"));
    newView->setShortcut(QKeySequence::New);
    openProject = make(tr("Open &Project..."), tr("Replace all views by those of a project"));
    saveProject = make(Shape::Save, tr("&Save Project"), tr("Save all views and their layers"));
    saveProject->setShortcut(QKeySequence::Save);
    saveProjectAs = make(tr("Save Project &As..."), tr("Save all views and their layers in another file"));
    saveProjectAs->setShortcut(QKeySequence::SaveAs);
    savePicture = make(tr("Save P&icture..."), tr("Save what the current view shows as a picture"));
    copyPicture = make(tr("&Copy Picture"), tr("Put what the current view shows into the clipboard"));
    copyPicture->setShortcut(QStringLiteral("Ctrl+Shift+C"));
    preferences = make(tr("Pre&ferences..."), tr("Settings of the plug-ins"));
    preferences->setMenuRole(QAction::PreferencesRole);
    quit = make(tr("&Quit"));
    quit->setShortcut(QKeySequence::Quit);
    quit->setMenuRole(QAction::QuitRole);
    about = make(tr("&About %1").arg(QGuiApplication::applicationDisplayName()));
    about->setMenuRole(QAction::AboutRole);
    aboutToolkit = make(tr("About &Qt"));
    aboutToolkit->setMenuRole(QAction::AboutQtRole);
}

void MainActions::makeViewActions()
{
    zoomIn = make(Shape::ZoomIn, tr("Zoom &In"), tr("Show the map larger"));
    zoomIn->setShortcuts({QKeySequence(QKeySequence::ZoomIn), QKeySequence(QStringLiteral("Ctrl+="))});
    zoomOut = make(Shape::ZoomOut, tr("Zoom &Out"), tr("Show the map smaller"));
    zoomOut->setShortcut(QKeySequence::ZoomOut);
    zoomToAll = make(Shape::ZoomAll, tr("Zoom to &All"), tr("Show all layers of the view"));
    zoomToAll->setShortcut(QStringLiteral("Ctrl+0"));
    zoomToLayer = make(Shape::ZoomLayer, tr("Zoom to &Layer"), tr("Show all of the selected layer"));
    zoomToLayer->setShortcut(QStringLiteral("Ctrl+L"));
    zoomToNative = make(Shape::ZoomNative, tr("Zoom to &1:1"), tr("Show one cell of the selected layer per pixel"));
    zoomToNative->setShortcut(QStringLiteral("Ctrl+1"));
    goTo = make(tr("&Go to Coordinates..."), tr("Show a place in the middle of the view"));
    goTo->setShortcut(QStringLiteral("Ctrl+G"));
    back = make(tr("&Back"), tr("Show what the view showed before"));
    back->setShortcut(QStringLiteral("Alt+Left"));
    forward = make(tr("Fo&rward"), tr("Show what the view showed before going back"));
    forward->setShortcut(QStringLiteral("Alt+Right"));
    for (QAction *action : {back, forward})
        action->setEnabled(false);
    fullScreen = make(tr("&Full Screen"), tr("Fill the screen with the window"));
    fullScreen->setShortcut(QKeySequence::FullScreen);
    fullScreen->setCheckable(true);
    nextPanel = make(tr("Next &Panel"), tr("Give the keyboard to the next panel"));
    nextPanel->setShortcut(QStringLiteral("F6"));
    previousPanel = make(tr("Pre&vious Panel"), tr("Give the keyboard to the panel before"));
    previousPanel->setShortcut(QStringLiteral("Shift+F6"));
    layerProperties = make(Shape::Properties, tr("Layer &Properties..."), tr("What is known of the selected layer"));
    layerProperties->setShortcut(QStringLiteral("Alt+Return"));
}

void MainActions::makeWindowActions()
{
    tabs = make(tr("&Tabs"), tr("Show one view at a time, in tabs"));
    cascade = make(tr("&Cascade"), tr("Show the views as windows, one behind the other"));
    tile = make(tr("T&ile"), tr("Show the views as windows, side by side"));
    nextView = make(tr("Ne&xt View"));
    nextView->setShortcut(QKeySequence::NextChild);
    renameView = make(tr("&Rename View..."));
    closeView = make(tr("Cl&ose View"));
    closeView->setShortcut(QKeySequence::Close);
}

void MainActions::makeMenus()
{
    makeFileMenu();
    viewMenu = window->menuBar()->addMenu(tr("&View"));
    viewMenu->addActions({zoomIn, zoomOut, zoomToAll, zoomToLayer, zoomToNative, goTo, back, forward});
    viewMenu->addSeparator();
    viewMenu->addActions({layerProperties, fullScreen});
    viewMenu->addSeparator();

    QMenu *windowMenu = window->menuBar()->addMenu(tr("&Window"));
    windowMenu->addActions({newView, renameView, closeView, nextView});
    windowMenu->addSeparator();
    windowMenu->addActions({nextPanel, previousPanel});
    windowMenu->addSeparator();
    windowMenu->addActions({tabs, cascade, tile});

    QMenu *helpMenu = window->menuBar()->addMenu(tr("&Help"));
    helpMenu->addActions({about, aboutToolkit});
}

void MainActions::makeFileMenu()
{
    fileMenu = window->menuBar()->addMenu(tr("&File"));
    fileMenu->addActions({open, openInNewView});
    recentMenu = fileMenu->addMenu(tr("Open &Recent"));
    pluginActionsPlace = fileMenu->addSeparator();
    fileMenu->addAction(openProject);
    recentProjectsMenu = fileMenu->addMenu(tr("Open Recent Pro&ject"));
    fileMenu->addActions({saveProject, saveProjectAs});
    fileMenu->addSeparator();
    fileMenu->addActions({savePicture, copyPicture});
    fileMenu->addSeparator();
    fileMenu->addAction(preferences);
    fileMenu->addSeparator();
    fileMenu->addAction(quit);
}

void MainActions::makeToolBar()
{
    toolBar = window->addToolBar(tr("Main"));
    toolBar->setObjectName(QStringLiteral("MainToolBar"));
    toolBar->setIconSize(QSize(20, 20));
    toolBar->addActions({open, newView, saveProject});
    toolBar->addSeparator();
    toolBar->addActions({zoomIn, zoomOut, zoomToAll, zoomToLayer, zoomToNative});
    toolBar->addSeparator();
    toolBar->addAction(layerProperties);
}

void MainActions::addFileActions(const QList<QAction *> &actions)
{
    fileMenu->insertActions(pluginActionsPlace, actions);
}

void MainActions::addToggles(const QList<QDockWidget *> &docks, const QList<QToolBar *> &toolBars)
{
    for (const QDockWidget *dock : docks)
        viewMenu->addAction(dock->toggleViewAction());
    viewMenu->addSeparator();
    for (const QToolBar *bar : toolBars) {
        QAction *toggle = bar->toggleViewAction();
        // An ampersand in a title is one, not the mark of a short cut.
        toggle->setText(bar->windowTitle().replace(QLatin1Char('&'), QLatin1String("&&")));
        viewMenu->addAction(toggle);
    }
}

void MainActions::update(bool hasView, bool hasLayer)
{
    for (QAction *action : {tabs, cascade, tile, nextView, renameView, closeView, saveProject, saveProjectAs})
        action->setEnabled(hasView);
    for (QAction *action :
         {zoomIn, zoomOut, zoomToAll, zoomToLayer, zoomToNative, goTo, layerProperties, savePicture, copyPicture})
        action->setEnabled(hasLayer);
}

} // namespace Viewer
