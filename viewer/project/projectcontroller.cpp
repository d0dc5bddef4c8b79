#include "projectcontroller.h"

#include "projectreader.h"
#include "projectwriter.h"
#include "views/maparea.h"

#include <QDGui/mapview.h>

#include <QDomDocument>

#include <algorithm>

namespace Viewer {

using Korvane::Map::Layer;
using Korvane::Map::MapView;

namespace {

/// Between something drawn anew and a look whether settings were changed.
constexpr int kEditMs = 400;

QString settingsOf(Layer &layer)
{
    QDomDocument document;
    QDomNode element = document.appendChild(document.createElement(QStringLiteral("layer")));
    layer.writeXML(element, document);
    return document.toString(-1);
}

} // namespace

ProjectController::ProjectController(const Korvane::PluginRegistry &registry, MapArea *area, QObject *parent)
    : QObject(parent)
    , registry(registry)
    , area(area)
{
    editTimer.setSingleShot(true);
    editTimer.setInterval(kEditMs);
    connect(&editTimer, &QTimer::timeout, this, &ProjectController::noticeEdits);
    connect(area, &MapArea::contentChanged, this, [this] {
        watchLayers();
        setModified(true);
    });
}

QVector<Layer *> ProjectController::layers() const
{
    QVector<Layer *> all;
    const QVector<MapView *> views = area->views();
    for (const MapView *view : views)
        all += view->getLayers().toVector();
    return all;
}

void ProjectController::watchLayers()
{
    QHash<const Layer *, QString> known;
    const QVector<Layer *> present = layers();
    for (Layer *layer : present) {
        const auto before = knownSettings.constFind(layer);
        known[layer] = before == knownSettings.constEnd() ? settingsOf(*layer) : *before;
        // Whatever changes the picture asks for it to be drawn; so does each pass of a decode, and nothing is lost then
        // but a comparison now and then.
        connect(layer, &Layer::refreshRequested, this, &ProjectController::watchEdits, Qt::UniqueConnection);
    }
    knownSettings = known;
}

void ProjectController::watchEdits()
{
    if (!editTimer.isActive())
        editTimer.start();
}

void ProjectController::rememberSettings()
{
    knownSettings.clear();
    watchLayers();
    edited = false;
}

void ProjectController::noticeEdits()
{
    const QVector<Layer *> present = layers();
    const bool differs = std::any_of(present.cbegin(), present.cend(), [this](Layer *layer) {
        return knownSettings.contains(layer) && knownSettings.value(layer) != settingsOf(*layer);
    });
    if (differs)
        setEdited();
}

bool ProjectController::hasEdits()
{
    if (!edited)
        noticeEdits();
    return edited;
}

void ProjectController::setEdited()
{
    edited = !isLoading;
    setModified(true);
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
    rememberSettings();
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
    if (error.isEmpty()) {
        rememberSettings();
        setState(fileName, false);
    }
    return error;
}

void ProjectController::close()
{
    isLoading = true;
    area->closeAllViews();
    isLoading = false;
    rememberSettings();
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
