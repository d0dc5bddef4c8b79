#include "mainwindow.h"

#include "appearance/aboutbox.h"
#include "appearance/failurereport.h"
#include "identify/identifydock.h"
#include "identify/placetext.h"
#include "identify/pointervalues.h"
#include "layers/layerlistdock.h"
#include "layers/layerlistmodel.h"
#include "log/logdock.h"
#include "mainactions.h"
#include "mapmenu.h"
#include "panelcycle.h"
#include "plugins/plugincontributions.h"
#include "plugins/preferencesdialog.h"
#include "plugins/propertieswindow.h"
#include "project/project.h"
#include "project/projectcontroller.h"
#include "project/projectdialogs.h"
#include "sources/recentsources.h"
#include "sources/sourcedropfilter.h"
#include "sources/sources.h"
#include "viewcommands.h"
#include "views/maparea.h"
#include "views/mapnotices.h"
#include "views/viewhistory.h"
#include "views/viewstatus.h"
#include "views/viewtexts.h"
#include "wheelguard.h"

#include <QDGui/application.h>
#include <QDGui/longtask.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QMdiSubWindow>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <QToolBar>

namespace Viewer {

using Korvane::Application;
using Korvane::Map::Layer;
using Korvane::Map::MapView;

namespace {

const QString kGeometryKey = QStringLiteral("Viewer/Geometry");
const QString kStateKey = QStringLiteral("Viewer/State");
const QString kRecentKey = QStringLiteral("Viewer/RecentSources");
const QString kFolderKey = QStringLiteral("Viewer/Folder");

/// In average characters: wide enough for a layer's name and for a panel's controls.
constexpr int kDockWidth = 44;
/// The same, for a name and a number.
constexpr int kListWidth = 30;

constexpr int kOpenLaterMs = 100;

/// Raised whenever docks or tool bars are named otherwise, so that no old state is restored.
constexpr int kStateVersion = 1;

QSettings *settings()
{
    return Application::instance()->settings();
}

} // namespace

MainWindow::MainWindow(const Korvane::PluginRegistry &registry)
    : registry(registry)
    , opener(registry)
    , area(new MapArea)
    , actions(new MainActions(this))
    , contributions(new PluginContributions(registry, this))
    , project(new ProjectController(registry, area, this))
    , projectDialogs(new ProjectDialogs(project, this))
    , recentSources(new RecentSources(settings(), kRecentKey, this))
    , layerDock(new LayerListDock(this))
    , identifyDock(new IdentifyDock(this))
    , logDock(new LogDock(this))
    , status(new ViewStatus(statusBar()))
    , notices(new MapNotices(this))
    , history(new ViewHistory(this))
    , pointerValues(new PointerValues(status->valuesField()))
    , propertiesWindow(new PropertiesWindow(*contributions, this))
{
    new WheelGuard(this);
    setCentralWidget(area);
    setDockOptions(dockOptions() | QMainWindow::GroupedDragging);
    resize(1024, 768);
    placeDocks();
    placeToolBars();
    connectFileActions();
    connectViewActions();
    connectWindowActions();
    connectArea();
    updateState();
    Application::instance()->setMainWindow(this);
}

MainWindow::~MainWindow()
{
    // Pages and panels hold addresses of layers, and are told of changes by the area: they go in this order.
    area->disconnect();
    delete propertiesWindow;
    contributions->activateLayer(nullptr);
    layerDock->setView(nullptr);
    status->setView(nullptr);
    notices->setView(nullptr);
    history->setView(nullptr);
    pointerValues->setView(nullptr);
    identifyDock->setView(nullptr);
    delete takeCentralWidget();
}

void MainWindow::placeDocks()
{
    addDockWidget(Qt::LeftDockWidgetArea, layerDock);
    const QList<QDockWidget *> docks = contributions->docks();
    QDockWidget *previous = nullptr;
    for (QDockWidget *dock : docks) {
        addDockWidget(Qt::LeftDockWidgetArea, dock);
        if (previous)
            tabifyDockWidget(previous, dock);
        previous = dock;
    }
    if (!docks.isEmpty()) {
        docks.first()->raise();
        resizeDocks({layerDock, docks.first()}, {1, 2}, Qt::Vertical);
    }
    resizeDocks({layerDock}, {fontMetrics().averageCharWidth() * kDockWidth}, Qt::Horizontal);
    addDockWidget(Qt::RightDockWidgetArea, identifyDock);
    resizeDocks({identifyDock}, {fontMetrics().averageCharWidth() * kListWidth}, Qt::Horizontal);
    identifyDock->hide();
    addDockWidget(Qt::BottomDockWidgetArea, logDock);
    logDock->hide();
}

void MainWindow::placeToolBars()
{
    const QList<QToolBar *> bars = contributions->toolBars();
    for (QToolBar *bar : bars) {
        addToolBar(bar);
        bar->setIconSize(actions->toolBar->iconSize());
    }
    actions->addFileActions(contributions->actions());
    actions->addToggles(QList<QDockWidget *>{layerDock} + contributions->docks() +
                            QList<QDockWidget *>{identifyDock, logDock},
                        QList<QToolBar *>{actions->toolBar} + bars);
}

void MainWindow::connectFileActions()
{
    connect(actions->open, &QAction::triggered, this, [this] { openSources(chooseFiles(tr("Open"))); });
    connect(actions->openInNewView, &QAction::triggered, this,
            [this] { openIn(chooseFiles(tr("Open in New View")), nullptr); });
    connect(actions->newView, &QAction::triggered, this, [this] { area->createView(); });
    connect(actions->openProject, &QAction::triggered, projectDialogs, &ProjectDialogs::open);
    connect(actions->saveProject, &QAction::triggered, projectDialogs, &ProjectDialogs::save);
    connect(actions->saveProjectAs, &QAction::triggered, projectDialogs, &ProjectDialogs::saveAs);
    connect(actions->savePicture, &QAction::triggered, this, &MainWindow::savePicture);
    connect(actions->copyPicture, &QAction::triggered, this, &MainWindow::copyPicture);
    connect(actions->preferences, &QAction::triggered, this, &MainWindow::showPreferences);
    connect(actions->quit, &QAction::triggered, this, &QWidget::close);
    recentSources->fill(actions->recentMenu);
    projectDialogs->recentProjects()->fill(actions->recentProjectsMenu);
    connect(recentSources, &RecentSources::chosen, this, [this](const QString &source) { openSources({source}); });
}

void MainWindow::connectViewActions()
{
    new ViewCommands(actions, area, this);
    connect(actions->goTo, &QAction::triggered, this, &MainWindow::goToPlace);
    connect(actions->back, &QAction::triggered, history, [this] { history->go(-1); });
    connect(actions->forward, &QAction::triggered, history, [this] { history->go(1); });
    connect(history, &ViewHistory::changed, this, [this] {
        actions->back->setEnabled(history->canGo(-1));
        actions->forward->setEnabled(history->canGo(1));
    });
    connect(actions->layerProperties, &QAction::triggered, this, [this] {
        if (const MapView *view = area->currentView())
            showProperties(view->getActiveLayer());
    });
    connect(actions->fullScreen, &QAction::toggled, this,
            [this](bool on) { setWindowState(windowState().setFlag(Qt::WindowFullScreen, on)); });
    connect(layerDock, &LayerListDock::propertiesRequested, this, &MainWindow::showProperties);
    connect(layerDock->layerModel(), &LayerListModel::layerEdited, project, &ProjectController::setEdited);
}

void MainWindow::connectWindowActions()
{
    connect(actions->tabs, &QAction::triggered, this, [this] { area->setArrangement(MapArea::Arrangement::Tabs); });
    connect(actions->cascade, &QAction::triggered, this, [this] { setFreeArrangement(false); });
    connect(actions->tile, &QAction::triggered, this, [this] { setFreeArrangement(true); });
    connect(actions->nextView, &QAction::triggered, area, &QMdiArea::activateNextSubWindow);
    connect(actions->renameView, &QAction::triggered, this, &MainWindow::renameView);
    connect(actions->closeView, &QAction::triggered, this, [this] {
        if (QMdiSubWindow *window = area->currentSubWindow())
            window->close();
    });
    auto *panels = new PanelCycle(this, area);
    connect(actions->nextPanel, &QAction::triggered, panels, [panels] { panels->move(true); });
    connect(actions->previousPanel, &QAction::triggered, panels, [panels] { panels->move(false); });
    connect(actions->about, &QAction::triggered, this, &MainWindow::showAbout);
    connect(actions->aboutToolkit, &QAction::triggered, qApp, &QApplication::aboutQt);
}

void MainWindow::connectArea()
{
    connect(area, &MapArea::currentViewChanged, layerDock, &LayerListDock::setView);
    connect(area, &MapArea::currentViewChanged, status, &ViewStatus::setView);
    connect(area, &MapArea::currentViewChanged, notices, &MapNotices::setView);
    connect(area, &MapArea::currentViewChanged, history, &ViewHistory::setView);
    connect(area, &MapArea::currentViewChanged, pointerValues, &PointerValues::setView);
    connect(area, &MapArea::currentViewChanged, identifyDock, &IdentifyDock::setView);
    connect(new MapMenu(actions, area, this), &MapMenu::identifyRequested, identifyDock, &IdentifyDock::identify);
    connect(area, &MapArea::currentViewChanged, this, &MainWindow::updateState);
    connect(area, &MapArea::contentChanged, this, &MainWindow::updateState);
    connect(project, &ProjectController::changed, this, &MainWindow::updateState);
    // A panel that a window change disabled is enabled again by the layer, so the window comes first.
    connect(area, &MapArea::currentWindowChanged, contributions, &PluginContributions::activateSubWindow);
    connect(area, &MapArea::activeLayerChanged, contributions, &PluginContributions::activateLayer);
    connect(area, &MapArea::activeLayerChanged, this, [this](Layer *layer) {
        if (propertiesWindow->isVisible())
            propertiesWindow->setLayer(layer);
    });
    auto *drops = new SourceDropFilter(this);
    connect(drops, &SourceDropFilter::dropped, this, [this](const QStringList &sources, MapView *view) {
        // Not from within the drop: a dialog would hold up the program that the files come from.
        const QPointer<MapView> target(view ? view : area->currentView());
        QMetaObject::invokeMethod(
            this, [this, sources, target] { openIn(sources, target); }, Qt::QueuedConnection);
    });
}

QStringList MainWindow::addSources(const QStringList &sources, MapView *target)
{
    QStringList failures;
    QPointer<MapView> view(target);
    for (const QString &source : sources) {
        QString failure;
        if (isProjectFile(source)) {
            failure = project->open(Sources::normalized(source), &failures);
            view = area->currentView();
        } else {
            failure = addLayer(source, &view);
        }
        if (!failure.isEmpty())
            failures.append(failure);
    }
    return failures;
}

QString MainWindow::addLayer(const QString &source, QPointer<MapView> *view)
{
    LayerOpener::Result result = opener.open(source);
    if (!result.layer) {
        if (!result.isCancelled)
            recentSources->remove(Sources::normalized(source));
        return result.error;
    }
    // Only now, so that no empty view is left behind by a source that cannot be opened.
    if (!*view)
        *view = area->createView();
    if ((*view)->addLayer(result.layer.get(), -1) < 0)
        return tr("%1 cannot be shown.").arg(QDir::toNativeSeparators(Sources::shown(source)));
    notices->watchPlace(result.layer.release()); // the view owns it
    recentSources->add(Sources::normalized(source));
    return QString();
}

void MainWindow::openSources(const QStringList &sources)
{
    openIn(sources, area->currentView());
}

void MainWindow::openIn(const QStringList &sources, MapView *view)
{
    if (Korvane::Gui::LongTask::isRunning()) { // dropped on the window while a stream is opened
        const QPointer<MapView> target(view);
        QTimer::singleShot(kOpenLaterMs, this, [this, sources, target] { openIn(sources, target); });
        return;
    }
    const auto isProject = [](const QString &source) { return isProjectFile(source); };
    if (std::any_of(sources.cbegin(), sources.cend(), isProject) && !projectDialogs->mayDiscard())
        return;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const QStringList failures = addSources(sources, view);
    QApplication::restoreOverrideCursor();
    FailureReport::show(this, failures, sources.size());
}

QStringList MainWindow::chooseFiles(const QString &title)
{
    const QString folder = settings()->value(kFolderKey, QDir::homePath()).toString();
    QStringList files = QFileDialog::getOpenFileNames(this, title, folder, registry.getFileFilter());
    if (!files.isEmpty())
        settings()->setValue(kFolderKey, QFileInfo(files.first()).absolutePath());
    return files;
}

void MainWindow::savePicture()
{
    MapView *view = area->currentView();
    const QString folder = settings()->value(kFolderKey, QDir::homePath()).toString();
    const QString jpegFilter = tr("JPEG images (*.jpg *.jpeg)");
    QFileDialog dialog(this, tr("Save Picture"), folder, tr("PNG images (*.png)") + QStringLiteral(";;") + jpegFilter);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("png"));
    connect(&dialog, &QFileDialog::filterSelected, &dialog, [&](const QString &filter) {
        dialog.setDefaultSuffix(filter == jpegFilter ? QStringLiteral("jpg") : QStringLiteral("png"));
    });
    if (!view || dialog.exec() != QDialog::Accepted)
        return;
    const QString error = ViewCommands::savePicture(view, dialog.selectedFiles().value(0));
    if (!error.isEmpty())
        FailureReport::show(this, {error}, 1);
}

void MainWindow::copyPicture()
{
    QImage image;
    const QString error = area->currentView() ? ViewCommands::picture(area->currentView(), &image) : QString();
    if (!error.isEmpty())
        FailureReport::show(this, {error}, 1);
    else if (!image.isNull())
        QApplication::clipboard()->setImage(image);
}

void MainWindow::renameView()
{
    MapView *view = area->currentView();
    if (!view)
        return;
    bool accepted = false;
    const QString title = QInputDialog::getText(this, tr("Rename View"), tr("Title (empty: the layer's name):"),
                                                QLineEdit::Normal, area->givenTitle(view), &accepted);
    if (accepted)
        area->setGivenTitle(view, title.trimmed());
}

void MainWindow::goToPlace()
{
    const QPointer<MapView> view(area->currentView());
    if (!view)
        return;
    bool accepted = false;
    const QString text = QInputDialog::getText(
        this, tr("Go to Coordinates"), tr("X and Y, or latitude and longitude, such as 46.72 N 9.92 E:"),
        QLineEdit::Normal, ViewTexts::plainCoordinates(view->getCenter(), view->getUnitsPerPixel()), &accepted);
    if (!accepted || !view)
        return;
    if (const auto place = PlaceText::parse(text, IdentifyDock::codeOf(*view)))
        view->setCenter(*place);
    else
        FailureReport::show(this, {tr("\"%1\" is no place that can be shown here.").arg(text)}, 1);
}

void MainWindow::setFreeArrangement(bool tiled)
{
    area->setArrangement(MapArea::Arrangement::Windows);
    if (tiled)
        area->tileSubWindows();
    else
        area->cascadeSubWindows();
}

void MainWindow::showProperties(Layer *layer)
{
    if (!layer)
        return;
    propertiesWindow->setLayer(layer);
    propertiesWindow->show();
    propertiesWindow->raise();
    propertiesWindow->activateWindow();
}

void MainWindow::showPreferences()
{
    PreferencesDialog(contributions->makePreferencePages(), this).exec();
}

void MainWindow::showAbout()
{
    AboutBox::show(registry, this);
}

void MainWindow::updateState()
{
    const MapView *view = area->currentView();
    actions->update(view, view && view->getLayerCount() > 0);
    const QString file = project->fileName();
    const QString name = QApplication::applicationDisplayName();
    setWindowTitle(file.isEmpty() ? name : QStringLiteral("%1[*] - %2").arg(QFileInfo(file).fileName(), name));
    setWindowModified(!file.isEmpty() && project->isModified());
}

void MainWindow::restoreLayout()
{
    restoreGeometry(settings()->value(kGeometryKey).toByteArray());
    restoreState(settings()->value(kStateKey).toByteArray(), kStateVersion);
}

void MainWindow::saveLayout() const
{
    settings()->setValue(kGeometryKey, saveGeometry());
    settings()->setValue(kStateKey, saveState(kStateVersion));
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!projectDialogs->mayDiscard()) {
        event->ignore();
        return;
    }
    saveLayout();
    propertiesWindow->close();
    event->accept();
}

} // namespace Viewer
