#include <QDGui/geoimage.h>

#include "imageresampler.h"
#include "pixelaxis.h"

#include <QColor>
#include <QPaintEngine>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Korvane {

namespace {

/// How much is resampled before it is drawn: a piece that stays in a processor's cache.
constexpr int kStripPixels = 1 << 17;

/// What can be seen of \a painter's device, in physical pixels. Devices other than images and pixmaps are not limited
/// here: their origin may lie inside a larger buffer.
QRectF visibleDeviceRect(const QPainter &painter, const QTransform &toPhysical)
{
    QRectF visible(-1e9, -1e9, 2e9, 2e9);
    const int deviceType = painter.device()->devType();
    if (deviceType == QInternal::Image || deviceType == QInternal::Pixmap)
        visible = QRectF(0, 0, painter.device()->width(), painter.device()->height());
    if (painter.hasClipping())
        visible &= toPhysical.mapRect(painter.clipBoundingRect());
    return visible;
}

void drawResampled(QPainter &painter, const QPoint &place, ImageResampler &&resampler)
{
    // A printer's page is not made of pixels: seams between the strips could show there.
    const bool isRaster = painter.paintEngine()->type() == QPaintEngine::Raster;
    const int stripRows = isRaster ? std::max(1, kStripPixels / resampler.width()) : resampler.height();
    QImage strip(resampler.width(), std::min(stripRows, resampler.height()), resampler.format());
    if (strip.isNull())
        return;
    for (int first = 0; first < resampler.height(); first += stripRows) {
        const int count = std::min(stripRows, resampler.height() - first);
        resampler.fill(&strip, first, count);
        painter.drawImage(place + QPoint(0, first), strip, QRect(0, 0, strip.width(), count));
    }
}

} // namespace

GeoImage::GeoImage(int width, int height, double x1, double y1, double x2, double y2, QImage::Format format,
                   const QColor *fillColor)
    : QImage(width, height, format)
    , x1(x1)
    , y1(y1)
    , x2(x2)
    , y2(y2)
{
    if (fillColor && !isNull())
        fill(*fillColor);
}

GeoImage::GeoImage(const QImage &image, double x1, double y1, double x2, double y2)
    : QImage(image)
    , x1(x1)
    , y1(y1)
    , x2(x2)
    , y2(y2)
{
}

void GeoImage::paint(QPainter &painter, double deviceX1, double deviceY1, double deviceX2, double deviceY2,
                     double worldX1, double worldY1, double worldX2, double worldY2) const
{
    if (isNull() || worldX1 == worldX2 || worldY1 == worldY2)
        return;
    // Rounding has to happen in physical pixels, whatever scale a high-resolution device brings along.
    const QTransform toPhysical = painter.deviceTransform();
    if (toPhysical.type() > QTransform::TxScale) {
        qWarning("GeoImage: painters that rotate or shear are not supported");
        return;
    }
    const QPointF corner1 = toPhysical.map(QPointF(deviceX1, deviceY1));
    const QPointF corner2 = toPhysical.map(QPointF(deviceX2, deviceY2));
    const QRectF visible = visibleDeviceRect(painter, toPhysical);
    const auto horizontal = pixelAxis({corner1.x(), corner2.x(), worldX1, worldX2}, x1, x2, width(),
                                      std::floor(visible.left()), std::ceil(visible.right()));
    const auto vertical = pixelAxis({corner1.y(), corner2.y(), worldY1, worldY2}, y1, y2, height(),
                                    std::floor(visible.top()), std::ceil(visible.bottom()));
    if (!horizontal || !vertical)
        return;

    const QPoint place(horizontal->first, vertical->first);
    painter.save();
    painter.setWorldTransform(toPhysical.inverted() * painter.worldTransform());
    const bool plainCopy =
        horizontal->isCopied() && !horizontal->isFlipped() && vertical->isCopied() && !vertical->isFlipped();
    if (plainCopy) {
        const QPoint origin(static_cast<int>(horizontal->low), static_cast<int>(vertical->low));
        const QSize size(horizontal->last - horizontal->first, vertical->last - vertical->first);
        painter.drawImage(place, *this, QRect(place - origin, size));
    } else {
        const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
        drawResampled(painter, place, ImageResampler(*this, *horizontal, *vertical, smooth));
    }
    painter.restore();
}

} // namespace Korvane
