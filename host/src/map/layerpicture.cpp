#include "layerpicture.h"

#include <QDGui/geopainter.h>
#include <QDGui/layer.h>

#include <QVariant>

#include <algorithm>

namespace Korvane::Map {

namespace {

/// Pixels around the bounds that an outline or a symbol may still cover.
constexpr double kDrawingMargin = 4.0;

/// The announced view is drawn in by this part of a pixel on all sides. Where a layer's cells end exactly at the edge
/// of the view, rounding noise would else make the layer take in another row of cells and fit it into the same pixels.
constexpr double kViewInset = 1e-6;

/// How long nothing may arrive from a layer that is all decoded, before its picture counts as the last one: between
/// reaching 100 per cent and asking for a repaint the layer still copies its pixels, on a thread of its own.
constexpr double kSettleMs = 100.0;
constexpr double kSettleMsPerMegapixel = 50.0;
/// The same for a layer that shows its pixels as they arrive but has not asked for a single repaint yet.
constexpr double kFirstPassSettleMs = 2000.0;

} // namespace

LayerPicture::LayerPicture(Layer *layer)
    : layer(layer)
    , isVisible(layer->isVisible())
{
}

void LayerPicture::invalidateView()
{
    isViewStale = true;
}

void LayerPicture::invalidate(const QRect &deviceRect)
{
    dirtyRegion += deviceRect;
}

bool LayerPicture::syncVisibility()
{
    if (isVisible == layer->isVisible())
        return false;
    isVisible = !isVisible;
    isViewStale = true;
    return true;
}

void LayerPicture::beginUpdate(bool zooming)
{
    if (isUpdating)
        return;
    isUpdating = true;
    layer->beginUpdate(zooming);
}

void LayerPicture::endUpdate()
{
    if (!isUpdating)
        return;
    isUpdating = false;
    layer->endUpdate();
    isViewStale = true;
}

bool LayerPicture::isInView(const MapGeometry &geometry) const
{
    if (!layer->isValid())
        return false;
    const double margin = kDrawingMargin * geometry.unitsPerPixel;
    const QRectF bounds = layer->getBounds().normalized().adjusted(-margin, -margin, margin, margin);
    return bounds.intersects(geometry.worldRect().normalized());
}

void LayerPicture::announceView(const MapGeometry &geometry)
{
    const double inset = kViewInset * geometry.unitsPerPixel;
    const QRectF world = geometry.worldRect().normalized().adjusted(inset, inset, -inset, -inset);
    const QRectF bounds = layer->getBounds();
    // The corners run as the layer's rows and columns do, or it would snap the view inward instead of outward.
    double x1 = world.left();
    double x2 = world.right();
    double y1 = world.bottom();
    double y2 = world.top();
    if (bounds.width() < 0)
        std::swap(x1, x2);
    if (bounds.height() > 0)
        std::swap(y1, y2);
    refreshCountAtView = layer->getRefreshCount();
    sinceDecoded.invalidate();
    layer->setView(geometry.deviceSize.width(), geometry.deviceSize.height(), x1, y1, x2, y2);
}

void LayerPicture::render(const MapGeometry &geometry)
{
    syncVisibility();
    if (!isVisible)
        return;
    const QRect device(QPoint(0, 0), geometry.deviceSize);
    if (isViewStale || canvas.size() != geometry.deviceSize) {
        isViewStale = false;
        announceView(geometry);
        dirtyRegion = device;
    }
    dirtyRegion &= device;
    if (dirtyRegion.isEmpty())
        return;
    if (canvas.size() != geometry.deviceSize)
        canvas = QImage(geometry.deviceSize, QImage::Format_ARGB32_Premultiplied);

    const QRectF world = geometry.worldRect();
    GeoPainter painter(&canvas, world, device);
    // Emptied where it is drawn anew: layers are partly transparent, and the old picture would show through.
    painter.setClipRegion(dirtyRegion);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(device, Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    dirtyRegion = QRegion();
    if (isInView(geometry))
        layer->paint(painter, &world, &device);
}

void LayerPicture::draw(QPainter &painter, double devicePixelRatio) const
{
    if (!isVisible || canvas.isNull())
        return;
    // Another view on the same pixels: the canvas itself is drawn on in device pixels.
    QImage picture(canvas.constBits(), canvas.width(), canvas.height(), canvas.bytesPerLine(), canvas.format());
    picture.setDevicePixelRatio(devicePixelRatio);
    painter.drawImage(QPoint(0, 0), picture);
}

int LayerPicture::getPercentComplete(const MapGeometry &geometry) const
{
    if (!layer->isVisible() || !isInView(geometry))
        return 100;
    const int percent = layer->getPercentComplete();
    return percent < 0 ? 100 : std::min(percent, 100);
}

bool LayerPicture::isComplete(const MapGeometry &geometry)
{
    if (!layer->isVisible())
        return true;
    if (isViewStale || !dirtyRegion.isEmpty() || layer->hasPendingRefresh())
        return false;
    if (!isInView(geometry) || layer->getPercentComplete() < 0)
        return true;
    if (layer->getPercentComplete() < 100) {
        sinceDecoded.invalidate();
        return false;
    }
    return isSettled(geometry);
}

bool LayerPicture::isSettled(const MapGeometry &geometry)
{
    const quint64 refreshCount = layer->getRefreshCount();
    if (!sinceDecoded.isValid()) {
        sinceDecoded.start();
        refreshCountAtDecoded = refreshCount;
    }
    // A repaint that was asked for after the decode had ended carries the last pixels.
    if (refreshCount != refreshCountAtDecoded)
        return true;
    const bool awaitsFirstPass = refreshCount == refreshCountAtView && layer->property("Progressive").toBool();
    const double megapixels = geometry.deviceSize.width() * 1e-6 * geometry.deviceSize.height();
    const double settleMs = awaitsFirstPass ? kFirstPassSettleMs : kSettleMs + kSettleMsPerMegapixel * megapixels;
    return static_cast<double>(sinceDecoded.elapsed()) >= settleMs;
}

} // namespace Korvane::Map
