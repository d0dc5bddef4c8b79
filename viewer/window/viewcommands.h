#pragma once

#include <QObject>

#include <functional>

class QAction;

namespace Korvane::Map {
class MapView;
} // namespace Korvane::Map

namespace Viewer {

class MainActions;
class MapArea;

/// Lets the zoom actions work on the area's current view.
class ViewCommands : public QObject
{
    Q_OBJECT

public:
    ViewCommands(const MainActions *actions, const MapArea *area, QObject *parent);

    /// Writes what \a view shows as a PNG file, whole or not at all; waits for its layers to be complete. Returns an
    /// empty text, or why it failed.
    static QString savePicture(Korvane::Map::MapView *view, const QString &fileName);

private:
    void connectToView(QAction *action, const MapArea *area, std::function<void(Korvane::Map::MapView *)> command);
};

} // namespace Viewer
