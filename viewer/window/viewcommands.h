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

    /// What \a view shows, in the pixels of its screen; waits for its layers to be complete. Returns an empty text, or
    /// why there is no picture.
    static QString picture(Korvane::Map::MapView *view, QImage *image);
    /// Writes that, in the format that the ending of the name tells, whole or not at all. Returns an empty text, or why
    /// it failed.
    static QString savePicture(Korvane::Map::MapView *view, const QString &fileName);

private:
    void connectToView(QAction *action, const MapArea *area, std::function<void(Korvane::Map::MapView *)> command);
};

} // namespace Viewer
