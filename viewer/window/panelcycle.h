#pragma once

#include <QObject>
#include <QPointer>

class QMainWindow;

namespace Viewer {

class MapArea;

/// Lets the keyboard leave the map: F6 and Shift+F6 give the focus to the next and the previous of the map, the docks
/// that can be seen and the tool bars, and Tab goes from the map to the next of them. The toolkit keeps Tab within the
/// window of a map.
class PanelCycle : public QObject
{
    Q_OBJECT

public:
    PanelCycle(QMainWindow *window, const MapArea *area);

    /// Moves the focus on by one panel.
    void move(bool forward);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QList<QWidget *> panels() const;

    QMainWindow *window;
    const MapArea *area;
};

} // namespace Viewer
