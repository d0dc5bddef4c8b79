#pragma once

#include <QDockWidget>

class QAction;
class QToolBar;
class QTreeView;

namespace Korvane::Map {
class Layer;
class MapView;
} // namespace Korvane::Map

namespace Viewer {

class LayerListModel;

/// The layers of the current view with their visibility and order, and what can be done with the selected one. The
/// selected row is the view's active layer.
class LayerListDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit LayerListDock(QWidget *parent = nullptr);

    void setView(Korvane::Map::MapView *view);
    LayerListModel *layerModel() const { return model; }

Q_SIGNALS:
    void propertiesRequested(Korvane::Map::Layer *layer);

private:
    void makeList();
    void makeActions();
    QAction *addListAction(const QIcon &icon, const QString &text, const QString &toolTip,
                           void (LayerListDock::*slot)());
    Korvane::Map::Layer *selectedLayer() const;
    void select(const Korvane::Map::Layer *layer);
    void onRowSelected();
    void onDoubleClicked(const QModelIndex &index);
    void onModelReset();
    void updateActions();
    void moveBy(int rows);

    void zoomToSelected();
    void zoomToNative();
    void moveUp();
    void moveDown();
    void moveToTop();
    void moveToBottom();
    void renameSelected();
    void copySource();
    void removeSelected();
    void showProperties();

    LayerListModel *model;
    QTreeView *list;
    QToolBar *bar;
    QAction *zoomAction = nullptr;
    QAction *nativeAction = nullptr;
    QAction *upAction = nullptr;
    QAction *downAction = nullptr;
    QAction *topAction = nullptr;
    QAction *bottomAction = nullptr;
    QAction *renameAction = nullptr;
    QAction *copyAction = nullptr;
    QAction *propertiesAction = nullptr;
    QAction *removeAction = nullptr;
};

} // namespace Viewer
