#include "layerlistdock.h"

#include "appearance/icons.h"
#include "layerlistmodel.h"
#include "sources/sources.h"

#include <QDGui/mapview.h>
#include <QDGui/rasterlayer.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QToolBar>
#include <QTreeView>
#include <QVBoxLayout>

namespace Viewer {

using Icons::Shape;
using Korvane::Map::Layer;
using Korvane::Map::MapView;

LayerListDock::LayerListDock(QWidget *parent)
    : QDockWidget(tr("Layers"), parent)
    , model(new LayerListModel(this))
    , list(new QTreeView)
    , bar(new QToolBar)
{
    setObjectName(QStringLiteral("LayerListDock"));
    makeList();
    makeActions();

    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(list);
    layout->addWidget(bar);
    setWidget(content);
    updateActions();
}

void LayerListDock::makeList()
{
    list->setModel(model);
    list->setRootIsDecorated(false);
    list->setHeaderHidden(true);
    list->setUniformRowHeights(true);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setDragDropMode(QAbstractItemView::DragDrop);
    list->setDefaultDropAction(Qt::CopyAction);
    list->setDragDropOverwriteMode(false);
    list->setEditTriggers(QAbstractItemView::EditKeyPressed);
    list->setTextElideMode(Qt::ElideMiddle);
    list->setContextMenuPolicy(Qt::ActionsContextMenu);
    list->setAccessibleName(tr("Layers"));
    connect(list->selectionModel(), &QItemSelectionModel::currentChanged, this, &LayerListDock::onRowSelected);
    connect(list, &QTreeView::doubleClicked, this, &LayerListDock::onDoubleClicked);
    connect(model, &QAbstractItemModel::modelReset, this, &LayerListDock::onModelReset);
}

QAction *LayerListDock::addListAction(const QIcon &icon, const QString &text, const QString &toolTip,
                                      void (LayerListDock::*slot)())
{
    auto *action = new QAction(icon, text, this);
    action->setToolTip(toolTip);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(action, &QAction::triggered, this, slot);
    list->addAction(action);
    return action;
}

void LayerListDock::makeActions()
{
    const auto separator = [this] {
        auto *action = new QAction(this);
        action->setSeparator(true);
        list->addAction(action);
    };
    zoomAction = addListAction(Icons::icon(Shape::ZoomLayer), tr("&Zoom to Layer"), tr("Show all of this layer"),
                               &LayerListDock::zoomToSelected);
    nativeAction = addListAction(Icons::icon(Shape::ZoomNative), tr("Zoom to &1:1"),
                                 tr("Show this layer with one cell per pixel"), &LayerListDock::zoomToNative);
    separator();
    upAction = addListAction(Icons::icon(Shape::Up), tr("Move &Up"), tr("Move the layer up"), &LayerListDock::moveUp);
    downAction =
        addListAction(Icons::icon(Shape::Down), tr("Move &Down"), tr("Move the layer down"), &LayerListDock::moveDown);
    topAction = addListAction(QIcon(), tr("Move to &Top"), QString(), &LayerListDock::moveToTop);
    bottomAction = addListAction(QIcon(), tr("Move to &Bottom"), QString(), &LayerListDock::moveToBottom);
    separator();
    renameAction = addListAction(QIcon(), tr("Re&name"), QString(), &LayerListDock::renameSelected);
    renameAction->setShortcut(Qt::Key_F2);
    copyAction = addListAction(QIcon(), tr("&Copy File Name or Address"), QString(), &LayerListDock::copySource);
    removeAction = addListAction(Icons::icon(Shape::Remove), tr("&Remove"), tr("Remove the layer from the view"),
                                 &LayerListDock::removeSelected);
    removeAction->setShortcut(QKeySequence::Delete);
    separator();
    propertiesAction = addListAction(Icons::icon(Shape::Properties), tr("&Properties..."),
                                     tr("What is known of this layer"), &LayerListDock::showProperties);

    bar->setIconSize(QSize(16, 16));
    bar->addActions({upAction, downAction, zoomAction, nativeAction, propertiesAction, removeAction});
}

void LayerListDock::setView(MapView *view)
{
    if (model->view())
        model->view()->disconnect(this);
    model->setView(view);
    if (view)
        connect(view, &MapView::activeLayerChanged, this, &LayerListDock::select);
}

Layer *LayerListDock::selectedLayer() const
{
    return model->layerAt(list->currentIndex());
}

void LayerListDock::select(const Layer *layer)
{
    const QModelIndex index = model->indexOf(layer);
    if (index.isValid() && index != list->currentIndex())
        list->setCurrentIndex(index);
    updateActions();
}

void LayerListDock::onRowSelected()
{
    Layer *layer = selectedLayer();
    if (layer && model->view() && model->view()->getActiveLayer() != layer)
        model->view()->setActiveLayer(layer);
    updateActions();
}

void LayerListDock::onDoubleClicked(const QModelIndex &index)
{
    if (Layer *layer = model->layerAt(index))
        Q_EMIT propertiesRequested(layer);
}

void LayerListDock::onModelReset()
{
    select(model->view() ? model->view()->getActiveLayer() : nullptr);
}

void LayerListDock::updateActions()
{
    const Layer *layer = selectedLayer();
    const int row = list->currentIndex().row();
    const int last = model->rowCount() - 1;
    for (QAction *action : {zoomAction, renameAction, copyAction, propertiesAction, removeAction})
        action->setEnabled(layer);
    nativeAction->setEnabled(qobject_cast<const Korvane::Map::RasterLayer *>(layer));
    for (QAction *action : {upAction, topAction})
        action->setEnabled(layer && row > 0);
    for (QAction *action : {downAction, bottomAction})
        action->setEnabled(layer && row < last);
}

void LayerListDock::moveBy(int rows)
{
    const Layer *layer = selectedLayer();
    const int row = list->currentIndex().row();
    const int target = qBound(0, row + rows, model->rowCount() - 1);
    if (layer && model->moveRow(row, target))
        select(layer);
}

void LayerListDock::zoomToSelected()
{
    if (const Layer *layer = selectedLayer())
        model->view()->zoomToLayer(layer);
}

void LayerListDock::zoomToNative()
{
    if (const Layer *layer = selectedLayer())
        model->view()->zoomToNative(layer);
}

void LayerListDock::moveUp()
{
    moveBy(-1);
}

void LayerListDock::moveDown()
{
    moveBy(1);
}

void LayerListDock::moveToTop()
{
    moveBy(-model->rowCount());
}

void LayerListDock::moveToBottom()
{
    moveBy(model->rowCount());
}

void LayerListDock::renameSelected()
{
    if (selectedLayer())
        list->edit(list->currentIndex());
}

void LayerListDock::copySource()
{
    if (const Layer *layer = selectedLayer())
        QApplication::clipboard()->setText(Sources::withoutCredentials(Sources::ofLayer(*layer)));
}

void LayerListDock::removeSelected()
{
    if (Layer *layer = selectedLayer())
        model->view()->removeLayer(layer);
}

void LayerListDock::showProperties()
{
    if (Layer *layer = selectedLayer())
        Q_EMIT propertiesRequested(layer);
}

} // namespace Viewer
