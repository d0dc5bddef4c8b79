#pragma once

#include <QWidget>

class QFormLayout;

namespace Korvane::Map {
class Layer;
class RasterLayer;
} // namespace Korvane::Map

namespace Viewer {

/// What every layer can tell of itself: source, format, size, place. Read once; the page keeps no pointer to the layer.
class LayerSummaryPage : public QWidget
{
    Q_OBJECT

public:
    explicit LayerSummaryPage(const Korvane::Map::Layer &layer, QWidget *parent = nullptr);

private:
    void addRasterRows(const Korvane::Map::RasterLayer &layer);
    void addRow(const QString &name, const QString &value);

    QFormLayout *form;
};

} // namespace Viewer
