#include "sourcedropfilter.h"

#include "sources.h"

#include <QDGui/mapview.h>

#include <QDropEvent>
#include <QMimeData>

namespace Viewer {

using Korvane::Map::MapView;

SourceDropFilter::SourceDropFilter(QWidget *window)
    : QObject(window)
    , window(window)
{
    window->setAcceptDrops(true);
    window->installEventFilter(this);
}

bool SourceDropFilter::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::Drop:
        return take(static_cast<QDropEvent *>(event));
    default:
        return QObject::eventFilter(watched, event);
    }
}

bool SourceDropFilter::take(QDropEvent *event)
{
    const QStringList sources = Sources::fromMimeData(*event->mimeData());
    if (sources.isEmpty())
        return false;
    // Whatever the other side proposes, nothing of it is moved away.
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (event->type() != QEvent::Drop)
        return true;
    QWidget *under = window->childAt(event->pos());
    while (under && !qobject_cast<MapView *>(under))
        under = under->parentWidget();
    Q_EMIT dropped(sources, qobject_cast<MapView *>(under));
    return true;
}

} // namespace Viewer
