#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QRectF>
#include <QTimer>
#include <QVector>

namespace Korvane::Map {
class MapView;
} // namespace Korvane::Map

namespace Viewer {

/// Where each map view has been: what it showed for a while, to go back to and forward again.
class ViewHistory : public QObject
{
    Q_OBJECT

public:
    explicit ViewHistory(QObject *parent);

    /// The view that is followed from now on; may be null. Each keeps its own history.
    void setView(Korvane::Map::MapView *view);
    bool canGo(int steps) const;
    /// Back by one with -1, forward with 1.
    void go(int steps);

Q_SIGNALS:
    void changed();

private:
    struct Places
    {
        QVector<QRectF> rects;
        int current = -1;
    };

    void remember();

    QPointer<Korvane::Map::MapView> view;
    QHash<const QObject *, Places> history;
    QTimer rest; ///< runs while the view may still move on
};

} // namespace Viewer
