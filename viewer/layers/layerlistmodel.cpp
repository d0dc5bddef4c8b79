#include "layerlistmodel.h"

#include "sources/sources.h"

#include <QDGui/rasterlayer.h>

#include <QDir>
#include <QMimeData>

#include <algorithm>

namespace Viewer {

using Korvane::Map::Layer;
using Korvane::Map::MapView;
using Korvane::Map::RasterLayer;

namespace {

const QString kMimeType = QStringLiteral("application/x-qdviewer-layer-row");

} // namespace

LayerListModel::LayerListModel(QObject *parent)
    : QAbstractListModel(parent)
{
}

MapView *LayerListModel::view() const
{
    return mapView;
}

void LayerListModel::setView(MapView *view)
{
    if (mapView)
        mapView->disconnect(this);
    mapView = view;
    if (mapView) {
        connect(mapView, &MapView::layersChanged, this, &LayerListModel::reload);
        connect(mapView, &MapView::layerUpdated, this, &LayerListModel::onLayerUpdated);
        // A widget tells of its end while guarded pointers still hold, and its layers are gone by then.
        connect(mapView, &QObject::destroyed, this, [this] {
            mapView.clear();
            reload();
        });
    }
    reload();
}

void LayerListModel::reload()
{
    beginResetModel();
    layers.clear();
    const QList<Layer *> fromLowest = mapView ? mapView->getLayers() : QList<Layer *>();
    for (Layer *layer : fromLowest)
        layers.prepend(layer);
    endResetModel();
}

void LayerListModel::onLayerUpdated(Layer *layer)
{
    const QModelIndex index = indexOf(layer);
    if (index.isValid())
        Q_EMIT dataChanged(index, index);
}

Layer *LayerListModel::layerAt(const QModelIndex &index) const
{
    return index.isValid() && index.row() < layers.size() ? layers.at(index.row()) : nullptr;
}

QModelIndex LayerListModel::indexOf(const Layer *layer) const
{
    const auto found = std::find(layers.cbegin(), layers.cend(), layer);
    return found == layers.cend() ? QModelIndex() : index(static_cast<int>(found - layers.cbegin()));
}

bool LayerListModel::moveRow(int row, int target)
{
    const int count = layers.size();
    if (!mapView || row < 0 || target < 0 || row >= count || target >= count)
        return false;
    // Rows count from the top, positions from the bottom.
    return row == target || mapView->moveLayer(count - 1 - row, count - 1 - target);
}

int LayerListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : layers.size();
}

QVariant LayerListModel::data(const QModelIndex &index, int role) const
{
    const Layer *layer = layerAt(index);
    if (!layer)
        return QVariant();
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return Sources::nameOfLayer(*layer);
    case Qt::DecorationRole:
        return layer->getIcon();
    case Qt::CheckStateRole:
        return layer->isVisible() ? Qt::Checked : Qt::Unchecked;
    case Qt::ToolTipRole:
        return toolTip(*layer);
    default:
        return QVariant();
    }
}

QString LayerListModel::toolTip(const Layer &layer) const
{
    const QString source = Sources::shown(Sources::ofLayer(layer));
    QStringList lines{Sources::isAddress(source) ? source : QDir::toNativeSeparators(source)};
    if (!layer.getFormat().isEmpty())
        lines.append(layer.getFormat());
    const auto *raster = qobject_cast<const RasterLayer *>(&layer);
    if (raster && raster->getSize().isValid())
        lines.append(tr("%1 × %2 cells").arg(raster->getSize().width()).arg(raster->getSize().height()));
    return lines.join(QLatin1Char('\n'));
}

bool LayerListModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    Layer *layer = layerAt(index);
    if (!layer)
        return false;
    if (role == Qt::CheckStateRole) {
        layer->setVisible(value.toInt() == Qt::Checked);
    } else if (role == Qt::EditRole && !value.toString().trimmed().isEmpty()) {
        layer->setDescription(value.toString().trimmed());
    } else {
        return false;
    }
    Q_EMIT dataChanged(index, index); // NOLINT(readability-misleading-indentation): of the empty macro
    Q_EMIT layerEdited(layer);
    return true;
}

Qt::ItemFlags LayerListModel::flags(const QModelIndex &index) const
{
    // Rows are dropped between others, never onto one.
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable | Qt::ItemIsEditable |
           Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

Qt::DropActions LayerListModel::supportedDropActions() const
{
    // Not a move: the view would remove the dragged row a second time, after the drop has moved it already.
    return Qt::CopyAction;
}

QStringList LayerListModel::mimeTypes() const
{
    return {kMimeType};
}

QMimeData *LayerListModel::mimeData(const QModelIndexList &indexes) const
{
    if (indexes.isEmpty())
        return nullptr;
    auto *data = new QMimeData;
    data->setData(kMimeType, QByteArray::number(indexes.first().row()));
    return data;
}

bool LayerListModel::canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                     const QModelIndex &parent) const
{
    Q_UNUSED(row)
    Q_UNUSED(column)
    return data && data->hasFormat(kMimeType) && action != Qt::IgnoreAction && !parent.isValid();
}

bool LayerListModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                  const QModelIndex &parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    bool ok = false;
    const int from = data->data(kMimeType).toInt(&ok);
    // Below the last row, the drop names no row. What is moved down leaves a gap above its target.
    int target = row < 0 ? layers.size() : row;
    if (target > from)
        --target;
    return ok && moveRow(from, target);
}

} // namespace Viewer
