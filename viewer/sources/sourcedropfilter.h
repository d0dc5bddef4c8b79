#pragma once

#include <QObject>
#include <QStringList>

class QDropEvent;
class QWidget;

namespace Korvane::Map {
class MapView;
} // namespace Korvane::Map

namespace Viewer {

/// Takes files and addresses that are dropped anywhere on a window.
class SourceDropFilter : public QObject
{
    Q_OBJECT

public:
    /// \a window becomes the parent and accepts drops from now on.
    explicit SourceDropFilter(QWidget *window);

Q_SIGNALS:
    /// \a view is the map view under the pointer, null elsewhere.
    void dropped(const QStringList &sources, Korvane::Map::MapView *view);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool take(QDropEvent *event);

    QWidget *window;
};

} // namespace Viewer
