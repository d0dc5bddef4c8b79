#pragma once

#include <QDGui/layer.h>
#include <QDGui/qdguiglobal.h>

#include <QImage>
#include <QList>
#include <QRectF>
#include <QWidget>

#include <memory>

namespace Korvane::Map {

/// Shows layers on top of each other on one map. One world unit is as long across as it is down; x grows to the right
/// and y upward. World rectangles are QRectF from the top-left corner, with a negative height.
///
/// Dragging with the left button pans, with Shift it draws a box to be shown; the wheel zooms at the pointer; the
/// arrow, plus and minus keys do the same. The first layer added to a view that has not been moved yet is shown whole,
/// and stays so while the view is resized.
class QDGUI_EXPORT MapView : public QWidget
{
    Q_OBJECT

public:
    explicit MapView(QWidget *parent = nullptr, Qt::WindowFlags flags = {});
    ~MapView() override;

    /// Puts \a layer, which the view then owns, at \a position of the stack (0 lowest, -1 or past the end: on top).
    /// Returns its position; -1, and the layer stays the caller's, when it is null or already in a view.
    int addLayer(Layer *layer, int position);
    /// Takes the layer out and deletes it. False when it is not one of this view's.
    bool removeLayer(Layer *layer);
    /// Takes the layer out and hands it back to the caller; null when it is not one of this view's.
    Layer *takeLayer(Layer *layer);
    bool moveLayer(int from, int to);
    /// From the lowest to the topmost.
    QList<Layer *> getLayers() const;
    int getLayerCount() const;
    Layer *getLayer(int position) const;
    int indexOf(const Layer *layer) const;

    /// The layer that panels work on. A layer becomes active when it is added; when the active one goes, the topmost
    /// does. Null in an empty view.
    Layer *getActiveLayer() const;
    void setActiveLayer(Layer *layer);

    /// What the widget shows.
    QRectF getVisibleWorldRect() const;
    /// Shows all of \a worldRect (of either direction), centred, as large as it can be.
    void setVisibleWorldRect(const QRectF &worldRect);
    /// World units per device pixel.
    double getUnitsPerPixel() const;
    void setUnitsPerPixel(double unitsPerPixel);
    QPointF getCenter() const;
    void setCenter(const QPointF &worldPoint);
    /// All of \a bounds, or where they would be thinner than a pixel in a picture of \a pixels, as much around their
    /// middle as can be seen.
    static QRectF visiblePart(const QRectF &bounds, const QSize &pixels);
    /// Show that of one layer or of all.
    void zoomToLayer(const Layer *layer);
    void zoomToAll();
    /// Shows the layer with one cell per device pixel around the centre of the view. Layers without cells: nothing.
    void zoomToNative(const Layer *layer);
    /// Makes everything \a factor times larger; \a anchor (widget coordinates) stays where it is.
    void zoomAt(double factor, const QPointF &anchor);
    /// Moves the picture by \a pixels of the widget.
    void panBy(const QPointF &pixels);
    /// False until a layer or a caller has given the view something to show.
    bool hasExtent() const;

    /// Widget coordinates to world coordinates and back.
    QPointF widgetToWorld(const QPointF &widgetPoint) const;
    QPointF worldToWidget(const QPointF &worldPoint) const;

    QColor getBackgroundColor() const;
    void setBackgroundColor(const QColor &color);

    /// The current world rectangle, fitted into \a pixelSize, as a picture of that many pixels. Waits at most
    /// \a timeoutMs for every visible layer to become complete, running an event loop without user input meanwhile;
    /// \a complete tells whether they did. The view's own picture is requested again afterwards. Works without the
    /// widget ever being shown.
    QImage renderToImage(const QSize &pixelSize, int timeoutMs, bool *complete = nullptr);
    /// As above, with all of \a worldRect (of either direction) instead of the current rectangle.
    QImage renderToImage(const QSize &pixelSize, const QRectF &worldRect, int timeoutMs, bool *complete = nullptr);

    /// Whether every visible layer has decoded its view and the picture shows it.
    bool isComplete() const;
    /// Runs an event loop without user input until isComplete() or \a timeoutMs have passed; returns isComplete().
    bool waitUntilComplete(int timeoutMs);
    /// The least percentage of the visible layers that have something in view, 0 to 100.
    int getPercentComplete() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    void viewChanged(const QRectF &worldRect);
    /// The pointer moved over the view, or the view below the pointer.
    void cursorMoved(const QPointF &worldPoint);
    void cursorLeft();
    /// The left button was pressed and let go in one place.
    void clicked(const QPointF &worldPoint);
    /// Layers were added, removed or moved.
    void layersChanged();
    /// A layer was shown or hidden, or drew itself anew.
    void layerUpdated(Korvane::Map::Layer *layer);
    /// Null when the last layer went.
    void activeLayerChanged(Korvane::Map::Layer *layer);
    /// 0 to 100, while layers decode; 100 once at the end.
    void progressChanged(int percent);

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    Q_DISABLE_COPY(MapView)

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Korvane::Map
