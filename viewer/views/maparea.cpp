#include "maparea.h"

#include "sources/sources.h"

#include <QDGui/layer.h>
#include <QDGui/mapview.h>

#include <QMdiSubWindow>
#include <QTabBar>

namespace Viewer {

using Korvane::Map::Layer;
using Korvane::Map::MapView;

MapArea::MapArea(QWidget *parent)
    : QMdiArea(parent)
{
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setTabsClosable(true);
    setTabsMovable(true);
    setDocumentMode(true);
    setViewMode(QMdiArea::TabbedView);
    styleTabBar();
    connect(this, &QMdiArea::subWindowActivated, this, &MapArea::onSubWindowActivated);
}

MapArea::~MapArea()
{
    // Nobody is told of the end, and no view may call back when only the base class is left.
    disconnect();
    disconnect(this, &QMdiArea::subWindowActivated, this, nullptr);
    for (MapView *view : qAsConst(order))
        view->disconnect(this);
    const QList<QMdiSubWindow *> windows = subWindowList();
    qDeleteAll(windows);
}

MapView *MapArea::createView(const QString &title)
{
    auto *view = new MapView;
    QMdiSubWindow *window = addSubWindow(view);
    adopt(window);
    records[view].givenTitle = title;
    updateTitle(view);
    if (arrangement() == Arrangement::Windows) {
        window->resize(view->sizeHint());
        window->show();
    }
    setActiveSubWindow(window);
    announceCurrent();
    Q_EMIT contentChanged();
    return view;
}

MapView *MapArea::currentView() const
{
    // Not the active sub-window: there is none while another window is in front.
    const QMdiSubWindow *window = currentSubWindow();
    return window ? qobject_cast<MapView *>(window->widget()) : nullptr;
}

void MapArea::setCurrentView(MapView *view)
{
    if (QMdiSubWindow *window = windowOf(view))
        setActiveSubWindow(window);
    announceCurrent();
}

QVector<MapView *> MapArea::views() const
{
    return order;
}

void MapArea::closeAllViews()
{
    const QList<QMdiSubWindow *> windows = subWindowList();
    for (QMdiSubWindow *window : windows) {
        removeSubWindow(window);
        delete window;
    }
    announceCurrent();
    Q_EMIT contentChanged();
}

QString MapArea::givenTitle(const MapView *view) const
{
    return records.value(view).givenTitle;
}

void MapArea::setGivenTitle(MapView *view, const QString &title)
{
    if (!records.contains(view) || records[view].givenTitle == title)
        return;
    records[view].givenTitle = title;
    updateTitle(view);
    Q_EMIT contentChanged();
}

QVector<MissingLayer> MapArea::missingLayers(const MapView *view) const
{
    return records.value(view).missing;
}

void MapArea::setMissingLayers(MapView *view, const QVector<MissingLayer> &missing)
{
    if (records.contains(view))
        records[view].missing = missing;
}

MapArea::Arrangement MapArea::arrangement() const
{
    return viewMode() == QMdiArea::TabbedView ? Arrangement::Tabs : Arrangement::Windows;
}

void MapArea::setArrangement(Arrangement wanted)
{
    if (wanted == arrangement())
        return;
    setViewMode(wanted == Arrangement::Tabs ? QMdiArea::TabbedView : QMdiArea::SubWindowView);
    styleTabBar();
    const QList<QMdiSubWindow *> windows = subWindowList();
    for (QMdiSubWindow *window : windows) {
        if (wanted == Arrangement::Tabs)
            window->showMaximized();
        else
            window->showNormal();
    }
    if (wanted == Arrangement::Windows)
        cascadeSubWindows();
}

void MapArea::styleTabBar()
{
    // The area makes a tab bar whenever its tabs are switched on, and stretches one tab over the whole width.
    if (auto *bar = findChild<QTabBar *>(QString(), Qt::FindDirectChildrenOnly)) {
        bar->setExpanding(false);
        bar->setElideMode(Qt::ElideMiddle);
    }
}

void MapArea::onSubWindowActivated(QMdiSubWindow *activated)
{
    const QList<QMdiSubWindow *> windows = subWindowList();
    for (QMdiSubWindow *window : windows)
        adopt(window);
    const bool wasAnnounced = announcedView && announcedView == currentView();
    announceCurrent();
    // Whoever sends the signal by hand wants everything that follows the active view to look again.
    if (activated && wasAnnounced)
        Q_EMIT activeLayerChanged(currentView()->getActiveLayer());
}

void MapArea::adopt(QMdiSubWindow *window)
{
    auto *view = window ? qobject_cast<MapView *>(window->widget()) : nullptr;
    if (!view || records.contains(view))
        return;
    window->setAttribute(Qt::WA_DeleteOnClose);
    records[view].number = nextNumber++;
    order.append(view);
    connect(view, &QObject::destroyed, this, [this, view] { forget(view); });
    connect(view, &MapView::activeLayerChanged, this, [this, view](Layer *layer) {
        updateTitle(view);
        if (view == currentView())
            Q_EMIT activeLayerChanged(layer);
    });
    connect(view, &MapView::layersChanged, this, [this, view] {
        updateTitle(view);
        Q_EMIT contentChanged();
    });
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(view, &QWidget::customContextMenuRequested, this,
            [this, view](const QPoint &position) { Q_EMIT menuRequested(view, position); });
    updateTitle(view);
    // Last: this activates the window, and that looks for windows to adopt.
    if (arrangement() == Arrangement::Tabs)
        window->showMaximized();
    Q_EMIT contentChanged();
}

void MapArea::forget(MapView *view)
{
    records.remove(view);
    order.removeAll(view);
    announceCurrent();
    Q_EMIT contentChanged();
}

void MapArea::updateTitle(MapView *view)
{
    QMdiSubWindow *window = windowOf(view);
    if (!window)
        return;
    const Record &record = records[view];
    QString title = record.givenTitle;
    if (title.isEmpty() && view->getActiveLayer())
        title = Sources::nameOfLayer(*view->getActiveLayer());
    window->setWindowTitle(title.isEmpty() ? tr("View %1").arg(record.number) : title);
}

QMdiSubWindow *MapArea::windowOf(const MapView *view) const
{
    const QList<QMdiSubWindow *> windows = subWindowList();
    for (QMdiSubWindow *window : windows) {
        if (view && window->widget() == view)
            return window;
    }
    return nullptr;
}

void MapArea::announceCurrent()
{
    if (currentSubWindow() != announcedWindow) {
        announcedWindow = currentSubWindow();
        Q_EMIT currentWindowChanged(announcedWindow);
    }
    MapView *view = currentView();
    if (view == announcedView)
        return;
    announcedView = view;
    Q_EMIT currentViewChanged(view);
    Q_EMIT activeLayerChanged(view ? view->getActiveLayer() : nullptr);
}

} // namespace Viewer
