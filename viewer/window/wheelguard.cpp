#include "wheelguard.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QScrollBar>
#include <QSlider>

namespace Viewer {

namespace {

bool isControl(const QWidget &widget)
{
    return qobject_cast<const QAbstractSpinBox *>(&widget) || qobject_cast<const QComboBox *>(&widget) ||
           (qobject_cast<const QAbstractSlider *>(&widget) && !qobject_cast<const QScrollBar *>(&widget));
}

} // namespace

WheelGuard::WheelGuard(QObject *parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool WheelGuard::eventFilter(QObject *watched, QEvent *event)
{
    const bool isPolish = event->type() == QEvent::Polish;
    if ((!isPolish && event->type() != QEvent::Wheel) || !watched->isWidgetType())
        return false;
    auto *widget = static_cast<QWidget *>(watched);
    if (!isControl(*widget))
        return false;
    if (isPolish) {
        if (widget->focusPolicy() == Qt::WheelFocus)
            widget->setFocusPolicy(Qt::StrongFocus);
        return false;
    }
    if (widget->hasFocus())
        return false;
    event->ignore(); // the toolkit then offers it to the parents
    return true;
}

} // namespace Viewer
