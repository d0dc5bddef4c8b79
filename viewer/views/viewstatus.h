#pragma once

#include <QObject>
#include <QPointF>
#include <QPointer>

class QLabel;
class QProgressBar;
class QStatusBar;

namespace Korvane::Map {
class MapView;
} // namespace Korvane::Map

namespace Viewer {

/// Keeps the status bar's fields in step with one map view: the world coordinates under the pointer, the coordinate
/// system, the scale and how much of the view is decoded.
class ViewStatus : public QObject
{
    Q_OBJECT

public:
    explicit ViewStatus(QStatusBar *bar);

    void setView(Korvane::Map::MapView *view);
    /// A field between the coordinates and the coordinate system, for whoever knows the cells.
    QLabel *valuesField() const { return values; }

private:
    void showCursor(const QPointF &worldPoint);
    void showScale();
    void showProgress(int percent);

    QPointer<Korvane::Map::MapView> view;
    QLabel *coordinates;
    QLabel *values;
    QLabel *system;
    QLabel *scale;
    QProgressBar *progress;
};

} // namespace Viewer
