// Setting views and painting.

#include "viewclipping.h"
#include "xrvjp2klayer.h"
#include "xrvjp2krenderer.h"

#include <QDGui/geopainter.h>

#include <mutex>

namespace Korvane {

namespace {

constexpr qint64 kReconnectIntervalMs = 20000;

/// Of an open image.
ImageGrid gridOf(const PLK::CView &view)
{
    const PLKFileInfo &info = *view.GetFileInfo();
    const auto cellToWorld = [&view](double column, double row) {
        QPointF world;
        view.ConvertDatasetToWorld(column, row, &world.rx(), &world.ry());
        return world;
    };
    return {info.nSizeX,   info.nSizeY,   info.fCellIncrementX, info.fCellIncrementY,
            info.fOriginX, info.fOriginY, cellToWorld};
}

} // namespace

QRectF XRVJP2kLayer::getBounds() const
{
    const PLKFileInfo *info = getFileInfo();
    if (!info)
        return QRectF(-180, 90, 360, -180);
    return QRectF(info->fOriginX, info->fOriginY, info->nSizeX * info->fCellIncrementX,
                  info->nSizeY * info->fCellIncrementY);
}

signed char XRVJP2kLayer::getPercentComplete() const
{
    return renderer ? renderer->GetPercentComplete() : static_cast<signed char>(-1);
}

bool XRVJP2kLayer::calculateClippedCoords(int width, int height, double x1, double y1, double x2, double y2)
{
    if (!renderer->GetFileInfo())
        return false;
    const std::optional<ClippedView> clipped = clipView(gridOf(*renderer), {width, height, x1, y1, x2, y2});
    if (!clipped)
        return false;
    lastViewX1 = clipped->x1;
    lastViewY1 = clipped->y1;
    lastViewX2 = clipped->x2;
    lastViewY2 = clipped->y2;
    lastViewWidth = clipped->width;
    lastViewHeight = clipped->height;
    return true;
}

PLK::CError XRVJP2kLayer::requestView(XRVJP2kRenderer &target, int width, int height) const
{
    QSize size(width, height);
    if (target.GetFileInfo())
        size = decodedSize(gridOf(target), {width, height, lastViewX1, lastViewY1, lastViewX2, lastViewY2});
    return target.SetView(bandList.size(), bandList.constData(), size.width(), size.height(), lastViewX1, lastViewY1,
                          lastViewX2, lastViewY2);
}

void XRVJP2kLayer::setView(int width, int height, double x1, double y1, double x2, double y2)
{
    // Whatever becomes of it now, what is being opened has not seen it, and the map will not ask again.
    if (opening)
        afterOpening.view = ClippedView{width, height, x1, y1, x2, y2};
    // While the map moves it waits for every blocking view: a quarter of the cells keeps it moving.
    if (updating && !progressive && adaptiveRoam) {
        width = static_cast<int>(width * 0.5);
        height = static_cast<int>(height * 0.5);
    }
    // Keeps the picture as it is until the new view is set. A callback may be waiting for the lock; SetView() never
    // waits for a callback.
    std::unique_lock<std::recursive_mutex> locker;
    if (renderer)
        locker = std::unique_lock(renderer->getImageMutex());
    if (!valid || !renderer)
        return;
    if (!calculateClippedCoords(width, height, x1, y1, x2, y2)) {
        clearImages();
        return;
    }
    const PLK::CError error = requestView(*renderer, lastViewWidth, lastViewHeight);
    if (error.GetErrorNumber() == PLK_ERR_CONNECTION_LOST)
        reconnectWhenDue();
    // A quarter of what was asked for, however little of it the image covers: it is a coarse picture in any case.
    if (!error && hasBackingRenderer())
        requestView(*backingRenderer, static_cast<int>(width * 0.25), static_cast<int>(height * 0.25));
    viewSet = !error;
}

void XRVJP2kLayer::clearImages()
{
    renderer->clearImage();
    if (hasBackingRenderer())
        backingRenderer->clearImage();
}

void XRVJP2kLayer::reconnectWhenDue()
{
    if (clock() - lastReconnectTime <= kReconnectIntervalMs)
        return;
    renderer->Reconnect();
    lastReconnectTime = clock();
}

void XRVJP2kLayer::repair()
{
    const Fault fault = opening ? Fault::None : getCondition().fault;
    if (fault == Fault::SourceChanged) {
        setDataSource(viewName());
    } else if (fault == Fault::ConnectionLost) {
        renderer->Reconnect();
        if (hasBackingRenderer())
            backingRenderer->Reconnect();
        lastReconnectTime = clock();
        refreshWithUpdate();
    }
}

bool XRVJP2kLayer::isRoaming() const
{
    const PLK::CIOStream *stream = renderer->GetStream();
    return stream && stream->IsRemote() && updating;
}

/// The coarse picture must not show through a layer or an image that is partly transparent.
bool XRVJP2kLayer::isBackingShown() const
{
    if (!hasBackingRenderer())
        return false;
    const bool opaque = getTransparency() == 1.0;
    return opaque && (isRoaming() || renderer->getOpacityBandNumber() == -1);
}

void XRVJP2kLayer::paint(GeoPainter &painter, const QRectF *world, const QRect *device)
{
    if (!renderer)
        return;
    if (isBackingShown())
        backingRenderer->paint(painter, *world, *device);
    renderer->paint(painter, *world, *device);
    if (drawOutline) {
        const QRectF bounds = getBounds();
        painter.save();
        painter.setPen(outlinePen);
        painter.drawWorldRect(bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
        painter.restore();
    }
}

} // namespace Korvane
