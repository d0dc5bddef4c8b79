#include "viewcommands.h"

#include "mainactions.h"
#include "views/maparea.h"
#include "views/pictures.h"

#include <QDGui/mapview.h>

#include <QAction>

namespace Viewer {

using Korvane::Map::MapView;

namespace {

/// As the map view does it for its keys.
constexpr double kZoomFactor = 1.4142135623730951;
constexpr int kPictureTimeoutMs = 120 * 1000;

void zoom(MapView *view, double factor)
{
    view->zoomAt(factor, QPointF(view->width() / 2.0, view->height() / 2.0));
}

} // namespace

ViewCommands::ViewCommands(const MainActions *actions, const MapArea *area, QObject *parent)
    : QObject(parent)
{
    connectToView(actions->zoomIn, area, [](MapView *view) { zoom(view, kZoomFactor); });
    connectToView(actions->zoomOut, area, [](MapView *view) { zoom(view, 1.0 / kZoomFactor); });
    connectToView(actions->zoomToAll, area, [](MapView *view) { view->zoomToAll(); });
    connectToView(actions->zoomToLayer, area, [](MapView *view) { view->zoomToLayer(view->getActiveLayer()); });
    connectToView(actions->zoomToNative, area, [](MapView *view) { view->zoomToNative(view->getActiveLayer()); });
}

void ViewCommands::connectToView(QAction *action, const MapArea *area, std::function<void(MapView *)> command)
{
    connect(action, &QAction::triggered, this, [area, command = std::move(command)] {
        if (MapView *view = area->currentView())
            command(view);
    });
}

QString ViewCommands::picture(MapView *view, QImage *image)
{
    bool isComplete = false;
    const QSize pixels = (QSizeF(view->size()) * view->devicePixelRatioF()).toSize();
    *image = view->renderToImage(pixels, view->getVisibleWorldRect(), kPictureTimeoutMs, &isComplete);
    if (!isComplete)
        return tr("The view did not become complete in time; there is no picture of it.");
    return QString();
}

QString ViewCommands::savePicture(MapView *view, const QString &fileName)
{
    QImage image;
    const QString error = picture(view, &image);
    return error.isEmpty() ? Pictures::write(image, fileName) : error;
}

} // namespace Viewer
