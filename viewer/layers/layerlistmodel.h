#pragma once

#include <QDGui/layer.h>
#include <QDGui/mapview.h>

#include <QAbstractListModel>
#include <QList>
#include <QPointer>

namespace Viewer {

/// The layers of one map view, the topmost in row 0. Checked rows are visible layers; names can be edited; rows are
/// moved by drag and drop.
class LayerListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit LayerListModel(QObject *parent = nullptr);

    Korvane::Map::MapView *view() const;
    /// The view whose layers are listed from now on; null for none.
    void setView(Korvane::Map::MapView *view);

    Korvane::Map::Layer *layerAt(const QModelIndex &index) const;
    QModelIndex indexOf(const Korvane::Map::Layer *layer) const;
    /// Moves the layer of \a row so that it comes to lie at row \a target. False when either is out of range.
    bool moveRow(int row, int target);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

Q_SIGNALS:
    /// A person changed a name or a visibility.
    void layerEdited(Korvane::Map::Layer *layer);

private:
    void reload();
    void onLayerUpdated(Korvane::Map::Layer *layer);
    QString toolTip(const Korvane::Map::Layer &layer) const;

    QPointer<Korvane::Map::MapView> mapView;
    /// The topmost first, as shown. Guarded: the view tells of a removal after the layer is gone.
    QList<QPointer<Korvane::Map::Layer>> layers;
};

} // namespace Viewer
