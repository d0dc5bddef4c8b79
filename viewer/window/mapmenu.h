#pragma once

#include <QObject>
#include <QPointF>

namespace Korvane::Map {
class MapView;
} // namespace Korvane::Map

namespace Viewer {

class MainActions;
class MapArea;

/// What can be done at a place of a map: the menu of the right button.
class MapMenu : public QObject
{
    Q_OBJECT

public:
    MapMenu(const MainActions *actions, const MapArea *area, QObject *parent);

Q_SIGNALS:
    void identifyRequested(const QPointF &worldPoint);

private:
    void show(Korvane::Map::MapView *view, const QPoint &position);

    const MainActions *actions;
};

} // namespace Viewer
