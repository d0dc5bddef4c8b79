#pragma once

#include <QDockWidget>
#include <QPointF>
#include <QPointer>

#include <memory>
#include <vector>

class QTreeWidget;
class QTreeWidgetItem;

namespace Korvane::Map {
struct CellValues;
class Layer;
class LayerValueReader;
class MapView;
} // namespace Korvane::Map

namespace Viewer {

/// What lies in one place of a map: coordinates, and the values of all bands of all visible layers there, at full
/// resolution. It reads beside everything else; the answers come one by one.
class IdentifyDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit IdentifyDock(QWidget *parent);
    ~IdentifyDock() override;

    /// The view whose clicks are followed while the dock can be seen; may be null.
    void setView(Korvane::Map::MapView *view);
    /// Shows what lies there, and the dock.
    void identify(const QPointF &worldPoint);
    /// EPSG code of what \a view shows: of the active layer, else of the first one that has one; 0 without.
    static int codeOf(const Korvane::Map::MapView &view);
    /// Everything shown as lines of "name<tab>value".
    QString text() const;

private:
    void look(const QPointF &worldPoint);
    void addPlace(const QPointF &worldPoint);
    void addLayer(const Korvane::Map::Layer &layer, const QPointF &worldPoint);
    void fill(QTreeWidgetItem *item, const QStringList &names, const Korvane::Map::CellValues &values);
    void copy() const;

    QPointer<Korvane::Map::MapView> view;
    QTreeWidget *tree;
    std::vector<std::unique_ptr<Korvane::Map::LayerValueReader>> readers; ///< of the place that is shown
};

} // namespace Viewer
