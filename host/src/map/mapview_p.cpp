#include "mapview_p.h"

#include <QDGui/layer.h>

#include <QApplication>
#include <QPainter>
#include <QPointer>

#include <algorithm>
#include <cmath>

namespace Korvane::Map {

namespace {

constexpr int kProgressIntervalMs = 50;
constexpr int kWheelPauseMs = 250;

/// No closer than this part of all layers' extent per pixel: beyond, doubles no longer tell the pixels apart.
constexpr double kMinUnitsShare = 1e-11;

} // namespace

MapView::Private::Private(MapView *view)
    : view(view)
{
    wheelTimer.setSingleShot(true);
    wheelTimer.setInterval(kWheelPauseMs);
    QObject::connect(&wheelTimer, &QTimer::timeout, view, [this] {
        if (!dragPoint)
            endInteraction();
    });
    progressTimer.setInterval(kProgressIntervalMs);
    QObject::connect(&progressTimer, &QTimer::timeout, view, [this] { onProgressTimer(); });
}

MapView::Private::Pictures::iterator MapView::Private::find(const Layer *layer)
{
    return std::find_if(pictures.begin(), pictures.end(),
                        [layer](const auto &picture) { return picture->getLayer() == layer; });
}

void MapView::Private::onLayerRefreshed(Layer *layer, const QRectF &worldRect)
{
    const auto picture = find(layer);
    if (picture == pictures.end())
        return;
    // The layer may have become valid with this: only then does it tell where it lies.
    ensureExtent();
    const QRect whole(QPoint(0, 0), renderedGeometry().deviceSize);
    const QRect changed = worldRect.isNull() ? whole : renderedGeometry().toDevice(worldRect);
    (*picture)->invalidate(changed);
    if ((*picture)->syncVisibility()) {
        view->update();
    } else {
        const double ratio = view->devicePixelRatioF();
        const QRectF area(changed.x() / ratio, changed.y() / ratio, changed.width() / ratio, changed.height() / ratio);
        view->update(area.toAlignedRect());
    }
    watchProgress();
    Q_EMIT view->layerUpdated(layer);
}

void MapView::Private::forget(const Layer *layer)
{
    const auto picture = find(layer);
    if (picture == pictures.end())
        return;
    pictures.erase(picture);
    view->update();
    if (activeLayer == layer)
        activate(pictures.empty() ? nullptr : pictures.back()->getLayer());
    Q_EMIT view->layersChanged();
}

void MapView::Private::activate(Layer *layer)
{
    if (activeLayer == layer)
        return;
    activeLayer = layer;
    Q_EMIT view->activeLayerChanged(layer);
}

void MapView::Private::syncSize()
{
    const QSize deviceSize = (QSizeF(view->size()) * view->devicePixelRatioF()).toSize().expandedTo(QSize(1, 1));
    if (deviceSize == geometry.deviceSize)
        return;
    MapGeometry changed = geometry;
    changed.deviceSize = deviceSize;
    if (fittedRect)
        changed.fit(*fittedRect);
    setGeometry(changed);
}

void MapView::Private::setGeometry(MapGeometry changed)
{
    const QRectF bounds = layerBounds();
    const double extent = std::max(bounds.width(), bounds.height());
    if (extent > 0.0) {
        // From the smallest that makes sense to all layers within a single pixel; the centre stays.
        changed.unitsPerPixel = std::clamp(changed.unitsPerPixel, extent * kMinUnitsShare, extent);
    }
    const bool isUsable = std::isfinite(changed.center.x()) && std::isfinite(changed.center.y()) &&
                          std::isfinite(changed.unitsPerPixel) && changed.unitsPerPixel > 0.0;
    if (!isUsable || changed == geometry)
        return;
    geometry = changed;
    if (!offscreenGeometry)
        invalidateViews();
    view->update();
    Q_EMIT view->viewChanged(geometry.worldRect());
    tellPointer(); // it is in another place of the map now
}

void MapView::Private::fit(const QRectF &worldRect)
{
    syncSize();
    hasExtent = true;
    fittedRect = worldRect;
    MapGeometry changed = geometry;
    changed.fit(worldRect);
    setGeometry(changed);
}

void MapView::Private::fitLayers(const QRectF &bounds)
{
    syncSize();
    fit(MapView::visiblePart(bounds, geometry.deviceSize));
}

void MapView::Private::ensureExtent()
{
    if (hasExtent)
        return;
    const auto placed = std::find_if(pictures.cbegin(), pictures.cend(),
                                     [](const auto &picture) { return picture->getLayer()->isValid(); });
    if (placed != pictures.cend())
        fitLayers((*placed)->getLayer()->getBounds());
}

QRectF MapView::Private::layerBounds() const
{
    QRectF all;
    for (const auto &picture : pictures) {
        if (picture->getLayer()->isValid())
            all |= picture->getLayer()->getBounds().normalized();
    }
    return all;
}

void MapView::Private::invalidateViews()
{
    for (const auto &picture : pictures)
        picture->invalidateView();
}

void MapView::Private::renderLayers()
{
    if (!hasExtent)
        return;
    for (const auto &picture : pictures)
        picture->render(renderedGeometry());
    watchProgress();
}

void MapView::Private::compose(QPainter &painter, double devicePixelRatio) const
{
    for (const auto &picture : pictures)
        picture->draw(painter, devicePixelRatio);
}

QImage MapView::Private::renderOffscreen(const MapGeometry &wanted, int timeoutMs, bool *complete)
{
    if (complete)
        *complete = false;
    QImage image(wanted.deviceSize, QImage::Format_RGB32);
    if (offscreenGeometry || image.isNull())
        return QImage();
    // Layers know one view at a time. While theirs is that of the picture, the widget shows what it showed before.
    if (view->isVisible())
        frozenPicture = view->grab().toImage();
    offscreenGeometry = wanted;
    invalidateViews();

    // Waiting handles events, and with one of them the view may be closed.
    const QPointer<MapView> guard(view);
    const bool isDone = view->waitUntilComplete(timeoutMs);
    if (!guard)
        return QImage();
    if (complete)
        *complete = isDone;
    image.fill(backgroundColor);
    {
        QPainter painter(&image);
        compose(painter, 1.0);
    }
    offscreenGeometry.reset();
    frozenPicture = QImage();
    invalidateViews();
    view->update();
    return image;
}

bool MapView::Private::isComplete() const
{
    // Without an extent no layer has anything to show.
    if (!hasExtent)
        return true;
    // Every one is asked, so that the times in which they settle run side by side.
    bool result = true;
    for (const auto &picture : pictures)
        result = picture->isComplete(renderedGeometry()) && result;
    return result;
}

int MapView::Private::getPercentComplete() const
{
    int percent = 100;
    for (const auto &picture : pictures)
        percent = std::min(percent, picture->getPercentComplete(renderedGeometry()));
    return percent;
}

void MapView::Private::watchProgress()
{
    if (!progressTimer.isActive())
        progressTimer.start();
}

void MapView::Private::onProgressTimer()
{
    // A hidden view is not rendered, so it would never become complete.
    if (isComplete() || !view->isVisible())
        progressTimer.stop();
    // 100 is kept back for the end: while the last pixels are on their way it is not over.
    const int percent = progressTimer.isActive() ? std::min(getPercentComplete(), 99) : 100;
    if (percent == lastPercent)
        return;
    lastPercent = percent;
    Q_EMIT view->progressChanged(percent);
}

void MapView::Private::beginInteraction(bool zooming)
{
    isInteracting = true;
    for (const auto &picture : pictures)
        picture->beginUpdate(zooming);
}

void MapView::Private::endInteraction()
{
    if (!isInteracting)
        return;
    isInteracting = false;
    wheelTimer.stop();
    for (const auto &picture : pictures)
        picture->endUpdate();
    view->update();
}

void MapView::Private::tellPointer() const
{
    if (pointer && hasExtent)
        Q_EMIT view->cursorMoved(view->widgetToWorld(*pointer));
}

void MapView::Private::beginZoomBox()
{
    if (!zoomBox)
        zoomBox = new QRubberBand(QRubberBand::Rectangle, view);
    zoomBox->setGeometry(QRect(pressPoint.toPoint(), QSize()));
    zoomBox->show();
}

void MapView::Private::endZoomBox()
{
    const QRect box = zoomBox->geometry();
    zoomBox->deleteLater();
    zoomBox = nullptr;
    if (std::min(box.width(), box.height()) < QApplication::startDragDistance())
        return;
    const QPointF topLeft = view->widgetToWorld(box.topLeft());
    const QPointF bottomRight = view->widgetToWorld(box.bottomRight() + QPoint(1, 1));
    view->setVisibleWorldRect(QRectF(topLeft, bottomRight));
}

void MapView::Private::dragTo(const QPointF &widgetPoint)
{
    const double ratio = view->devicePixelRatioF();
    const QPointF distance = (widgetPoint - *dragPoint) * ratio;
    // Whole pixels only: what was decoded for one place fits the next without resampling.
    const QPointF steps(std::round(distance.x()), std::round(distance.y()));
    if (steps.isNull())
        return;
    *dragPoint += steps / ratio;
    if (!isInteracting)
        beginInteraction(false);
    fittedRect.reset();
    MapGeometry changed = geometry;
    changed.panBy(steps);
    setGeometry(changed);
}

} // namespace Korvane::Map
