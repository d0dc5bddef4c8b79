#include "projectcontroller.h"

#include "projectreader.h"
#include "projectwriter.h"
#include "views/maparea.h"

#include <QDGui/mapview.h>

namespace Viewer {

using Korvane::Map::Layer;
using Korvane::Map::MapView;

ProjectController::ProjectController(const Korvane::PluginRegistry &registry, MapArea *area, QObject *parent)
    : QObject(parent)
    , registry(registry)
    , area(area)
{
    connect(area, &MapArea::contentChanged, this, [this] { setModified(true); });
}

void ProjectController::setModified(bool isModified)
{
    if (!isLoading)
        setState(currentFile, isModified);
}

void ProjectController::setState(const QString &fileName, bool isModified)
{
    if (fileName == currentFile && isModified == modified)
        return;
    currentFile = fileName;
    modified = isModified;
    Q_EMIT changed();
}

QString ProjectController::open(const QString &fileName, QStringList *warnings)
{
    QString error;
    Project project = ProjectReader(registry).read(fileName, &error);
    if (!error.isEmpty())
        return error;
    warnings->append(project.warnings);
    isLoading = true;
    show(&project);
    isLoading = false;
    setState(fileName, false);
    return QString();
}

void ProjectController::show(Project *project)
{
    area->closeAllViews();
    area->setArrangement(project->inTabs ? MapArea::Arrangement::Tabs : MapArea::Arrangement::Windows);
    for (ProjectView &view : project->views)
        showView(&view);
    area->setCurrentView(area->views().value(project->currentView));
}

void ProjectController::showView(ProjectView *projectView)
{
    MapView *view = area->createView(projectView->title);
    area->setMissingLayers(view, projectView->missing);
    QVector<Layer *> added;
    for (std::unique_ptr<Layer> &layer : projectView->layers) {
        if (view->addLayer(layer.get(), -1) >= 0)
            added.append(layer.release());
    }
    if (!projectView->worldRect.isNull())
        view->setVisibleWorldRect(projectView->worldRect);
    if (Layer *active = added.value(projectView->activeLayer))
        view->setActiveLayer(active);
}

QString ProjectController::save(const QString &fileName)
{
    QString error = ProjectWriter::write(gather(), fileName);
    if (error.isEmpty())
        setState(fileName, false);
    return error;
}

void ProjectController::close()
{
    isLoading = true;
    area->closeAllViews();
    isLoading = false;
    setState(QString(), false);
}

ProjectSource ProjectController::gather() const
{
    ProjectSource project;
    project.inTabs = area->arrangement() == MapArea::Arrangement::Tabs;
    const QVector<MapView *> views = area->views();
    project.currentView = views.indexOf(area->currentView());
    for (const MapView *view : views) {
        ProjectViewSource source;
        source.title = area->givenTitle(view);
        source.worldRect = view->hasExtent() ? view->getVisibleWorldRect() : QRectF();
        source.layers = view->getLayers().toVector();
        source.activeLayer = view->getActiveLayer();
        source.missing = area->missingLayers(view);
        project.views.append(source);
    }
    return project;
}

} // namespace Viewer
