#include <QDGui/layer.h>

#include "layer_p.h"

#include <QCoreApplication>
#include <QEvent>
#include <QUuid>

#include <algorithm>
#include <cmath>

namespace Korvane::Map {

namespace {

QEvent::Type refreshEventType()
{
    static const auto kType = static_cast<QEvent::Type>(QEvent::registerEventType());
    return kType;
}

} // namespace

void PendingRefresh::add(double x1, double y1, double x2, double y2)
{
    const bool isFinite = std::isfinite(x1) && std::isfinite(y1) && std::isfinite(x2) && std::isfinite(y2);
    if (!isFinite || (x1 == 0.0 && y1 == 0.0 && x2 == 0.0 && y2 == 0.0)) {
        whole = true;
        return;
    }
    left = std::min({left, x1, x2});
    right = std::max({right, x1, x2});
    low = std::min({low, y1, y2});
    high = std::max({high, y1, y2});
}

QRectF PendingRefresh::worldRect() const
{
    return whole ? QRectF() : QRectF(left, low, right - left, high - low);
}

Layer::Layer(QObject *parent)
    : QObject(parent)
    , d(new Private)
{
    d->uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
}

Layer::~Layer() = default;

QIcon Layer::getIcon() const
{
    return QIcon();
}

bool Layer::isVisible() const
{
    return d->visible;
}

void Layer::setVisible(bool visible)
{
    if (d->visible == visible)
        return;
    d->visible = visible;
    refresh(0, 0, 0, 0);
}

QString Layer::getUid() const
{
    return d->uid;
}

QString Layer::getComments() const
{
    return d->comments;
}

void Layer::setComments(QString comments)
{
    d->comments = std::move(comments);
}

QString Layer::getDescription() const
{
    return d->description;
}

void Layer::setDescription(QString description)
{
    d->description = std::move(description);
}

QString Layer::getFormat() const
{
    return QString();
}

QString Layer::getCoordSysName() const
{
    return QString();
}

void Layer::beginUpdate(bool zooming)
{
    Q_UNUSED(zooming)
}

void Layer::endUpdate()
{
}

QString Layer::getLastError() const
{
    return QString();
}

QString Layer::getProtocol() const
{
    return QString();
}

signed char Layer::getPercentComplete() const
{
    return 100;
}

bool Layer::isOpeningCancelled() const
{
    return d->isOpeningCancelled;
}

void Layer::setOpeningCancelled(bool cancelled)
{
    d->isOpeningCancelled = cancelled;
}

void Layer::refresh(double x1, double y1, double x2, double y2)
{
    {
        const std::lock_guard<std::mutex> lock(d->refreshMutex);
        ++d->refreshCount;
        const bool isDelivering = d->pendingRefresh.has_value();
        if (!isDelivering)
            d->pendingRefresh.emplace();
        d->pendingRefresh->add(x1, y1, x2, y2);
        if (isDelivering)
            return;
    }
    QCoreApplication::postEvent(this, new QEvent(refreshEventType()));
}

quint64 Layer::getRefreshCount() const
{
    const std::lock_guard<std::mutex> lock(d->refreshMutex);
    return d->refreshCount;
}

bool Layer::hasPendingRefresh() const
{
    const std::lock_guard<std::mutex> lock(d->refreshMutex);
    return d->pendingRefresh.has_value();
}

bool Layer::event(QEvent *event)
{
    if (event->type() != refreshEventType())
        return QObject::event(event);
    std::optional<PendingRefresh> pending;
    {
        const std::lock_guard<std::mutex> lock(d->refreshMutex);
        pending.swap(d->pendingRefresh);
    }
    if (pending)
        Q_EMIT refreshRequested(pending->worldRect());
    return true;
}

} // namespace Korvane::Map
