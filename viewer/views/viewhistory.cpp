#include "viewhistory.h"

#include <QDGui/mapview.h>

#include <cmath>

namespace Viewer {

using Korvane::Map::MapView;

namespace {

constexpr int kRestMs = 700;
constexpr int kMaxPlaces = 100;

/// The same but for rounding.
bool isSame(const QRectF &one, const QRectF &other)
{
    const double tolerance = 1e-6 * (std::abs(one.width()) + std::abs(one.height()));
    return std::abs(one.left() - other.left()) < tolerance && std::abs(one.top() - other.top()) < tolerance &&
           std::abs(one.width() - other.width()) < tolerance && std::abs(one.height() - other.height()) < tolerance;
}

} // namespace

ViewHistory::ViewHistory(QObject *parent)
    : QObject(parent)
{
    rest.setSingleShot(true);
    rest.setInterval(kRestMs);
    connect(&rest, &QTimer::timeout, this, &ViewHistory::remember);
}

void ViewHistory::setView(MapView *newView)
{
    if (rest.isActive()) {
        rest.stop();
        remember();
    }
    if (view)
        view->disconnect(this);
    view = newView;
    if (view) {
        if (!history.contains(view))
            history[view] = {};
        connect(view, &QObject::destroyed, this, [this](const QObject *gone) { history.remove(gone); });
        connect(view, &MapView::viewChanged, &rest, qOverload<>(&QTimer::start));
        rest.start();
    }
    Q_EMIT changed();
}

void ViewHistory::remember()
{
    if (!view || !view->hasExtent())
        return;
    Places &places = history[view];
    const QRectF rect = view->getVisibleWorldRect();
    if (places.current >= 0 && isSame(places.rects[places.current], rect))
        return;
    places.rects.resize(places.current + 1); // what lay ahead is no more
    places.rects.append(rect);
    if (places.rects.size() > kMaxPlaces)
        places.rects.removeFirst();
    places.current = places.rects.size() - 1;
    Q_EMIT changed();
}

bool ViewHistory::canGo(int steps) const
{
    const Places places = history.value(view);
    const int wanted = places.current + steps;
    return view && wanted >= 0 && wanted < places.rects.size();
}

void ViewHistory::go(int steps)
{
    if (rest.isActive()) {
        rest.stop();
        remember();
    }
    if (!canGo(steps))
        return;
    Places &places = history[view];
    places.current += steps;
    view->setVisibleWorldRect(places.rects[places.current]);
    rest.stop(); // this is no new place
    Q_EMIT changed();
}

} // namespace Viewer
