#include "mapmenu.h"

#include "mainactions.h"
#include "views/maparea.h"
#include "views/viewtexts.h"

#include <QDGui/mapview.h>

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPointer>

namespace Viewer {

using Korvane::Map::MapView;

MapMenu::MapMenu(const MainActions *actions, const MapArea *area, QObject *parent)
    : QObject(parent)
    , actions(actions)
{
    connect(area, &MapArea::menuRequested, this, &MapMenu::show);
}

void MapMenu::show(MapView *view, const QPoint &position)
{
    if (!view->hasExtent())
        return;
    const QPointer<MapView> shown(view);
    const QPointF place = view->widgetToWorld(position);
    auto *menu = new QMenu(view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("&What Is Here?")), &QAction::triggered, this,
            [this, place] { Q_EMIT identifyRequested(place); });
    const QString coordinates = ViewTexts::plainCoordinates(place, view->getUnitsPerPixel());
    connect(menu->addAction(tr("&Copy Coordinates %1").arg(coordinates)), &QAction::triggered, this,
            [coordinates] { QGuiApplication::clipboard()->setText(coordinates); });
    connect(menu->addAction(tr("C&entre Here")), &QAction::triggered, this, [shown, place] {
        if (shown)
            shown->setCenter(place);
    });
    menu->addSeparator();
    menu->addActions({actions->zoomToAll, actions->zoomToLayer, actions->zoomToNative});
    menu->addSeparator();
    menu->addAction(actions->layerProperties);
    menu->popup(view->mapToGlobal(position));
}

} // namespace Viewer
