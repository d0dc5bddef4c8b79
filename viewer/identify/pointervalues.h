#pragma once

#include <QObject>
#include <QPointF>
#include <QPointer>
#include <QTimer>

#include <memory>

class QLabel;

namespace Korvane::Map {
struct CellValues;
class Layer;
class LayerValueReader;
class MapView;
} // namespace Korvane::Map

namespace Viewer {

/// Shows, in a label, the values of the active layer's shown bands under the pointer, at the resolution of the screen:
/// what is decoded for the picture is enough, and from a server comes nothing that it did not need.
class PointerValues : public QObject
{
    Q_OBJECT

public:
    explicit PointerValues(QLabel *label);
    ~PointerValues() override;

    /// The view whose pointer is followed; may be null.
    void setView(Korvane::Map::MapView *view);

private:
    void moveTo(const QPointF &worldPoint);
    void clear();
    void ask();
    void takeReader(const Korvane::Map::Layer *layer);
    void show(const Korvane::Map::CellValues &values);

    QLabel *label;
    QPointer<Korvane::Map::MapView> view;
    QPointF place; ///< where the pointer is, if it is over the view
    bool isOver = false;
    QTimer rest; ///< runs while the pointer may still move on
    std::unique_ptr<Korvane::Map::LayerValueReader> reader;
    const Korvane::Map::Layer *readLayer = nullptr; ///< only compared
    QString readSource;
};

} // namespace Viewer
