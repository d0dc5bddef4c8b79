#pragma once

#include "sources/layeropener.h"

#include <QMainWindow>
#include <QPointer>

namespace Korvane {
class PluginRegistry;
namespace Map {
class Layer;
class MapView;
} // namespace Map
} // namespace Korvane

namespace Viewer {

class IdentifyDock;
class LayerListDock;
class LogDock;
class MainActions;
class MapArea;
class MapNotices;
class PluginContributions;
class PointerValues;
class ProjectController;
class ProjectDialogs;
class PropertiesWindow;
class RecentSources;
class ViewHistory;
class ViewStatus;

/// The viewer's window: brings the map views, docks, menus and the plug-ins' pieces together.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// The registry must outlive the window. The settings store is the host's.
    explicit MainWindow(const Korvane::PluginRegistry &registry);
    ~MainWindow() override;

    MapArea *mapArea() const { return area; }
    ProjectController *projectController() const { return project; }
    MainActions *mainActions() const { return actions; }

    /// Opens \a sources as layers of \a view, or of a new view when that is null; a project replaces all views. Shows
    /// no dialogs. Returns one sentence for each that failed.
    QStringList addSources(const QStringList &sources, Korvane::Map::MapView *view);
    /// As above, in the current view, and tells the person of failures.
    void openSources(const QStringList &sources);

    /// Where the window and its docks were when the settings were last saved.
    void restoreLayout();
    void saveLayout() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void placeDocks();
    void placeToolBars();
    void connectFileActions();
    void connectViewActions();
    void connectWindowActions();
    void connectArea();

    QString addLayer(const QString &source, QPointer<Korvane::Map::MapView> *view);
    void openIn(const QStringList &sources, Korvane::Map::MapView *view);
    QStringList chooseFiles(const QString &title);
    void savePicture();
    void copyPicture();
    void renameView();
    void goToPlace();
    void setFreeArrangement(bool tiled);
    void showProperties(Korvane::Map::Layer *layer);
    void showPreferences();
    void showAbout();
    void updateState();

    const Korvane::PluginRegistry &registry;
    LayerOpener opener;
    MapArea *area;
    MainActions *actions;
    PluginContributions *contributions;
    ProjectController *project;
    ProjectDialogs *projectDialogs;
    RecentSources *recentSources;
    LayerListDock *layerDock;
    IdentifyDock *identifyDock;
    LogDock *logDock;
    ViewStatus *status;
    MapNotices *notices;
    ViewHistory *history;
    PointerValues *pointerValues;
    PropertiesWindow *propertiesWindow;
};

} // namespace Viewer
