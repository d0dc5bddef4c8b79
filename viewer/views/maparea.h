#pragma once

#include "missinglayer.h"

#include <QHash>
#include <QMdiArea>
#include <QVector>

namespace Korvane::Map {
class Layer;
class MapView;
} // namespace Korvane::Map

namespace Viewer {

/// The area with the map views, each in a sub-window of its own. Views that others (a plug-in) put into sub-windows
/// become known when their sub-window is activated.
class MapArea : public QMdiArea
{
    Q_OBJECT

public:
    enum class Arrangement { Tabs, Windows };

    explicit MapArea(QWidget *parent = nullptr);
    ~MapArea() override;

    /// Adds an empty view and makes it current. An empty \a title: the view is called after its active layer.
    Korvane::Map::MapView *createView(const QString &title = QString());
    /// The view that actions work on, also while a dock or another program has the focus; null without views.
    Korvane::Map::MapView *currentView() const;
    void setCurrentView(Korvane::Map::MapView *view);
    /// In the order in which they were made.
    QVector<Korvane::Map::MapView *> views() const;
    void closeAllViews();

    /// The title that a person or a project gave the view; empty when it goes by its layer's name.
    QString givenTitle(const Korvane::Map::MapView *view) const;
    void setGivenTitle(Korvane::Map::MapView *view, const QString &title);

    /// Layers of a loaded project that could not be opened and are kept for the next save.
    QVector<MissingLayer> missingLayers(const Korvane::Map::MapView *view) const;
    void setMissingLayers(Korvane::Map::MapView *view, const QVector<MissingLayer> &missing);

    Arrangement arrangement() const;
    void setArrangement(Arrangement arrangement);

Q_SIGNALS:
    /// Null when the last view was closed.
    void currentViewChanged(Korvane::Map::MapView *view);
    /// The active layer of the current view is another one, or the same after the window was activated anew.
    void activeLayerChanged(Korvane::Map::Layer *layer);
    /// The current sub-window is another one; null when there is none left. Unlike subWindowActivated(), not sent
    /// when another window of the program or the desktop comes to the front.
    void currentWindowChanged(QMdiSubWindow *window);
    /// A person asked for what can be done at \a position of the view.
    void menuRequested(Korvane::Map::MapView *view, const QPoint &position);
    /// Views or their layers were added, removed, moved or renamed.
    void contentChanged();

private:
    struct Record
    {
        int number = 0;
        QString givenTitle;
        QVector<MissingLayer> missing;
    };

    void onSubWindowActivated(QMdiSubWindow *window);
    void adopt(QMdiSubWindow *window);
    void forget(Korvane::Map::MapView *view);
    void updateTitle(Korvane::Map::MapView *view);
    QMdiSubWindow *windowOf(const Korvane::Map::MapView *view) const;
    void announceCurrent();
    void styleTabBar();

    QHash<const QObject *, Record> records;
    QVector<Korvane::Map::MapView *> order;
    // Only compared, never used.
    QMdiSubWindow *announcedWindow = nullptr;
    Korvane::Map::MapView *announcedView = nullptr;
    int nextNumber = 1;
};

} // namespace Viewer
