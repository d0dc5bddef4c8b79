// What the map view does when it is painted, resized, dragged and scrolled.

#include "mapview_p.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>
#include <utility>

namespace Korvane::Map {

namespace {

constexpr double kKeyPanShare = 0.125;
constexpr double kKeyZoomFactor = 1.4142135623730951;
/// An ordinary wheel's notch; two of them make everything twice as large.
constexpr double kWheelNotch = 120.0;

} // namespace

bool MapView::event(QEvent *event)
{
    // A button that is let go after this is never heard of.
    if (event->type() == QEvent::Hide) {
        d->dragPoint.reset();
        delete std::exchange(d->zoomBox, nullptr);
        d->endInteraction();
    }
    return QWidget::event(event);
}

void MapView::paintEvent(QPaintEvent *event)
{
    // On another screen the pixel ratio may be another one, without an event that tells of it.
    d->syncSize();
    if (!d->offscreenGeometry)
        d->renderLayers();
    QPainter painter(this);
    painter.fillRect(event->rect(), d->backgroundColor);
    if (d->offscreenGeometry)
        painter.drawImage(0, 0, d->frozenPicture);
    else if (d->hasExtent)
        d->compose(painter, devicePixelRatioF());
}

void MapView::resizeEvent(QResizeEvent *event)
{
    d->syncSize();
    QWidget::resizeEvent(event);
}

void MapView::showEvent(QShowEvent *event)
{
    d->syncSize();
    QWidget::showEvent(event);
}

void MapView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton) {
        d->pressPoint = event->localPos();
        if (event->modifiers() & Qt::ShiftModifier && d->hasExtent)
            return d->beginZoomBox();
        d->dragPoint = event->localPos();
        setCursor(Qt::ClosedHandCursor);
    }
}

void MapView::mouseMoveEvent(QMouseEvent *event)
{
    d->pointer = event->localPos();
    if (d->zoomBox)
        d->zoomBox->setGeometry(QRect(d->pressPoint.toPoint(), event->pos()).normalized());
    if (d->dragPoint && d->hasExtent)
        d->dragTo(event->localPos());
    d->tellPointer();
}

void MapView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->buttons() & (Qt::LeftButton | Qt::MiddleButton))
        return;
    if (d->zoomBox)
        return d->endZoomBox();
    d->dragPoint.reset();
    d->endInteraction();
    unsetCursor();
    const double distance = (event->localPos() - d->pressPoint).manhattanLength();
    if (event->button() == Qt::LeftButton && d->hasExtent && distance < QApplication::startDragDistance())
        Q_EMIT clicked(widgetToWorld(event->localPos()));
}

void MapView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        zoomAt(2.0, event->localPos());
}

void MapView::wheelEvent(QWheelEvent *event)
{
    const double notches = event->angleDelta().y() / kWheelNotch;
    if (notches != 0.0 && d->hasExtent) {
        // No notch is known to be the last: the series ends when none has come for a while.
        d->beginInteraction(true);
        d->wheelTimer.start();
        zoomAt(std::pow(2.0, notches / 2.0), event->position());
    }
    event->accept();
}

void MapView::keyPressEvent(QKeyEvent *event)
{
    const QPointF step(width() * kKeyPanShare, height() * kKeyPanShare);
    const QPointF middle(width() / 2.0, height() / 2.0);
    switch (event->key()) {
    case Qt::Key_Left:
        return panBy(QPointF(std::round(step.x()), 0));
    case Qt::Key_Right:
        return panBy(QPointF(-std::round(step.x()), 0));
    case Qt::Key_Up:
        return panBy(QPointF(0, std::round(step.y())));
    case Qt::Key_Down:
        return panBy(QPointF(0, -std::round(step.y())));
    case Qt::Key_Plus:
        return zoomAt(kKeyZoomFactor, middle);
    case Qt::Key_Minus:
        return zoomAt(1.0 / kKeyZoomFactor, middle);
    case Qt::Key_Home:
        return zoomToAll();
    default:
        QWidget::keyPressEvent(event);
    }
}

void MapView::leaveEvent(QEvent *event)
{
    d->pointer.reset();
    Q_EMIT cursorLeft();
    QWidget::leaveEvent(event);
}

} // namespace Korvane::Map
