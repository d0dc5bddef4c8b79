#include "panelcycle.h"

#include "views/maparea.h"

#include <QDGui/mapview.h>

#include <QApplication>
#include <QDockWidget>
#include <QKeyEvent>
#include <QMainWindow>
#include <QToolBar>

#include <algorithm>

namespace Viewer {

using Korvane::Map::MapView;

namespace {

bool takesKeys(const QWidget &widget)
{
    return widget.isVisible() && widget.isEnabled() && (widget.focusPolicy() & Qt::TabFocus);
}

/// Gives the focus to the panel or to the first in it that takes keys.
bool enter(QWidget *panel)
{
    if (takesKeys(*panel)) {
        panel->setFocus(Qt::TabFocusReason);
        return true;
    }
    const QWidgetList children = panel->findChildren<QWidget *>();
    const auto first =
        std::find_if(children.begin(), children.end(), [](const QWidget *one) { return takesKeys(*one); });
    if (first == children.end())
        return false;
    (*first)->setFocus(Qt::TabFocusReason);
    return true;
}

} // namespace

PanelCycle::PanelCycle(QMainWindow *window, const MapArea *area)
    : QObject(window)
    , window(window)
    , area(area)
{
    qApp->installEventFilter(this);
}

QList<QWidget *> PanelCycle::panels() const
{
    QList<QWidget *> all;
    if (MapView *view = area->currentView())
        all.append(view);
    for (QDockWidget *dock : window->findChildren<QDockWidget *>(QString(), Qt::FindDirectChildrenOnly)) {
        // Of docks behind each other, the one in front.
        if (dock->widget() && dock->isVisible() && !dock->visibleRegion().isEmpty())
            all.append(dock->widget());
    }
    for (QToolBar *bar : window->findChildren<QToolBar *>(QString(), Qt::FindDirectChildrenOnly)) {
        if (bar->isVisible())
            all.append(bar);
    }
    return all;
}

void PanelCycle::move(bool forward)
{
    QList<QWidget *> all = panels();
    if (!forward)
        std::reverse(all.begin(), all.end());
    const QWidget *focus = QApplication::focusWidget();
    const auto current = std::find_if(all.begin(), all.end(), [focus](const QWidget *panel) {
        return panel == focus || (focus && panel->isAncestorOf(focus));
    });
    if (current != all.end())
        std::rotate(all.begin(), current + 1, all.end());
    for (QWidget *panel : qAsConst(all)) {
        if (enter(panel))
            return;
    }
}

bool PanelCycle::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || watched != area->currentView())
        return false;
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key != Qt::Key_Tab && key != Qt::Key_Backtab)
        return false;
    move(key == Qt::Key_Tab);
    return true;
}

} // namespace Viewer
