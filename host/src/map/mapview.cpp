#include <QDGui/mapview.h>

#include "mapview_p.h"

#include <QDGui/layer.h>
#include <QDGui/rasterlayer.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QPointer>
#include <QThread>

#include <algorithm>
#include <cmath>

namespace Korvane::Map {

namespace {

constexpr int kWaitPollMs = 10;

/// Of layers that would be thinner than a pixel, in pixels: one might be lost between two that it touches.
constexpr double kThinFit = 2.0;

} // namespace

MapView::MapView(QWidget *parent, Qt::WindowFlags flags)
    : QWidget(parent, flags)
    , d(new Private(this))
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

MapView::~MapView()
{
    // Layers are taken out before they are deleted, so none of them can call back into a half-destroyed view.
    while (!d->pictures.empty()) {
        Layer *const layer = d->pictures.back()->getLayer();
        layer->disconnect(this);
        d->pictures.pop_back();
        delete layer;
    }
}

int MapView::addLayer(Layer *layer, int position)
{
    if (!layer || layer->thread() != thread() || qobject_cast<MapView *>(layer->parent()))
        return -1;
    const int count = getLayerCount();
    const int place = position < 0 ? count : std::min(position, count);
    layer->setParent(this);
    d->pictures.insert(d->pictures.begin() + place, std::make_unique<LayerPicture>(layer));
    connect(layer, &Layer::refreshRequested, this,
            [this, layer](const QRectF &worldRect) { d->onLayerRefreshed(layer, worldRect); });
    connect(layer, &QObject::destroyed, this, [this, layer] { d->forget(layer); });
    if (d->isInteracting)
        d->pictures[static_cast<size_t>(place)]->beginUpdate(false);
    d->ensureExtent();
    update();
    Q_EMIT layersChanged();
    d->activate(layer);
    return place;
}

Layer *MapView::takeLayer(Layer *layer)
{
    const auto picture = d->find(layer);
    if (picture == d->pictures.end())
        return nullptr;
    layer->disconnect(this);
    (*picture)->endUpdate();
    layer->setParent(nullptr);
    d->forget(layer);
    return layer;
}

bool MapView::removeLayer(Layer *layer)
{
    const std::unique_ptr<Layer> taken(takeLayer(layer));
    return taken != nullptr;
}

bool MapView::moveLayer(int from, int to)
{
    const int count = getLayerCount();
    if (from < 0 || from >= count || to < 0 || to >= count)
        return false;
    if (from == to)
        return true;
    const auto first = d->pictures.begin();
    if (from < to)
        std::rotate(first + from, first + from + 1, first + to + 1);
    else
        std::rotate(first + to, first + from, first + from + 1);
    update();
    Q_EMIT layersChanged();
    return true;
}

QList<Layer *> MapView::getLayers() const
{
    QList<Layer *> layers;
    for (const auto &picture : d->pictures)
        layers.append(picture->getLayer());
    return layers;
}

int MapView::getLayerCount() const
{
    return static_cast<int>(d->pictures.size());
}

Layer *MapView::getLayer(int position) const
{
    const bool exists = position >= 0 && position < getLayerCount();
    return exists ? d->pictures[static_cast<size_t>(position)]->getLayer() : nullptr;
}

int MapView::indexOf(const Layer *layer) const
{
    const auto picture = d->find(layer);
    return picture == d->pictures.end() ? -1 : static_cast<int>(picture - d->pictures.begin());
}

Layer *MapView::getActiveLayer() const
{
    return d->activeLayer;
}

void MapView::setActiveLayer(Layer *layer)
{
    if (indexOf(layer) >= 0)
        d->activate(layer);
}

QRectF MapView::getVisibleWorldRect() const
{
    return d->geometry.worldRect();
}

void MapView::setVisibleWorldRect(const QRectF &worldRect)
{
    d->fit(worldRect);
}

double MapView::getUnitsPerPixel() const
{
    return d->geometry.unitsPerPixel;
}

void MapView::setUnitsPerPixel(double unitsPerPixel)
{
    d->fittedRect.reset();
    d->hasExtent = true;
    MapGeometry changed = d->geometry;
    changed.unitsPerPixel = unitsPerPixel;
    d->setGeometry(changed);
}

QPointF MapView::getCenter() const
{
    return d->geometry.center;
}

void MapView::setCenter(const QPointF &worldPoint)
{
    d->fittedRect.reset();
    d->hasExtent = true;
    MapGeometry changed = d->geometry;
    changed.center = worldPoint;
    d->setGeometry(changed);
}

QRectF MapView::visiblePart(const QRectF &bounds, const QSize &pixels)
{
    QRectF shown = bounds.normalized();
    const double thinner = std::min(shown.width(), shown.height());
    const QSizeF most = QSizeF(pixels) * thinner; // at one pixel for all of the thinner side
    if (thinner <= 0.0 || (shown.width() <= most.width() && shown.height() <= most.height()))
        return bounds;
    shown.setSize(shown.size().boundedTo(most / kThinFit));
    shown.moveCenter(bounds.center());
    return shown;
}

void MapView::zoomToLayer(const Layer *layer)
{
    if (layer && layer->isValid())
        d->fitLayers(layer->getBounds());
}

void MapView::zoomToAll()
{
    const QRectF bounds = d->layerBounds();
    if (!bounds.isNull())
        d->fitLayers(bounds);
}

void MapView::zoomToNative(const Layer *layer)
{
    const auto *raster = qobject_cast<const RasterLayer *>(layer);
    if (!raster || !raster->isValid())
        return;
    const double cellSize = std::min(std::abs(raster->getCellSizeX()), std::abs(raster->getCellSizeY()));
    const QRectF bounds = raster->getBounds();
    MapGeometry changed = d->geometry;
    changed.unitsPerPixel = cellSize;
    if (!bounds.normalized().contains(changed.center))
        changed.center = bounds.center();
    changed.alignTo(bounds.topLeft());
    d->fittedRect.reset();
    d->hasExtent = true;
    d->setGeometry(changed);
}

void MapView::zoomAt(double factor, const QPointF &anchor)
{
    if (!d->hasExtent)
        return;
    d->fittedRect.reset();
    MapGeometry changed = d->geometry;
    changed.zoomAt(factor, anchor * devicePixelRatioF());
    d->setGeometry(changed);
}

void MapView::panBy(const QPointF &pixels)
{
    if (!d->hasExtent)
        return;
    d->fittedRect.reset();
    MapGeometry changed = d->geometry;
    changed.panBy(pixels * devicePixelRatioF());
    d->setGeometry(changed);
}

bool MapView::hasExtent() const
{
    return d->hasExtent;
}

QPointF MapView::widgetToWorld(const QPointF &widgetPoint) const
{
    return d->geometry.toWorld(widgetPoint * devicePixelRatioF());
}

QPointF MapView::worldToWidget(const QPointF &worldPoint) const
{
    return d->geometry.toDevice(worldPoint) / devicePixelRatioF();
}

QColor MapView::getBackgroundColor() const
{
    return d->backgroundColor;
}

void MapView::setBackgroundColor(const QColor &color)
{
    d->backgroundColor = color;
    update();
}

QImage MapView::renderToImage(const QSize &pixelSize, int timeoutMs, bool *complete)
{
    d->ensureExtent();
    return renderToImage(pixelSize, d->fittedRect.value_or(getVisibleWorldRect()), timeoutMs, complete);
}

QImage MapView::renderToImage(const QSize &pixelSize, const QRectF &worldRect, int timeoutMs, bool *complete)
{
    MapGeometry wanted = d->geometry;
    wanted.deviceSize = pixelSize;
    if (!pixelSize.isEmpty()) {
        wanted.fit(worldRect);
        d->hasExtent = true;
    }
    return d->renderOffscreen(wanted, timeoutMs, complete);
}

bool MapView::isComplete() const
{
    return d->isComplete();
}

bool MapView::waitUntilComplete(int timeoutMs)
{
    QElapsedTimer elapsed;
    elapsed.start();
    d->renderLayers();
    if (d->isComplete())
        return true;

    const QPointer<MapView> guard(this);
    QEventLoop loop;
    QTimer poll;
    connect(this, &QObject::destroyed, &loop, &QEventLoop::quit);
    connect(&poll, &QTimer::timeout, this, [&] {
        d->renderLayers();
        if (d->isComplete() || elapsed.elapsed() >= timeoutMs)
            loop.quit();
    });
    poll.start(kWaitPollMs);
    // What comes between the last look and the end of the loop, a timer that ends a zoom, may ask for another view.
    // While the application quits there are no loops.
    while (loop.exec(QEventLoop::ExcludeUserInputEvents) == 0 && guard && !d->isComplete() &&
           elapsed.elapsed() < timeoutMs) {
    }
    return guard && d->isComplete();
}

int MapView::getPercentComplete() const
{
    return d->getPercentComplete();
}

QSize MapView::sizeHint() const
{
    return QSize(640, 480);
}

} // namespace Korvane::Map
