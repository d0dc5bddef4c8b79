#pragma once

#include <QDGui/mapview.h>

#include "layerpicture.h"
#include "mapgeometry.h"

#include <QColor>
#include <QRubberBand>
#include <QTimer>

#include <optional>
#include <vector>

namespace Korvane::Map {

class MapView::Private
{
public:
    explicit Private(MapView *view);

    using Pictures = std::vector<std::unique_ptr<LayerPicture>>;

    /// What is rendered at present: the widget's geometry, or that of an off-screen picture while one is being made.
    const MapGeometry &renderedGeometry() const { return offscreenGeometry ? *offscreenGeometry : geometry; }

    Pictures::iterator find(const Layer *layer);
    void onLayerRefreshed(Layer *layer, const QRectF &worldRect);
    /// Takes the entry of a layer out that is being destroyed, or that the caller takes over.
    void forget(const Layer *layer);
    void activate(Layer *layer);

    /// Follows the widget's size and pixel ratio.
    void syncSize();
    void setGeometry(MapGeometry changed);
    void fit(const QRectF &worldRect);
    /// All of \a bounds, or where they would be thinner than a pixel, their middle.
    void fitLayers(const QRectF &bounds);
    /// Shows the first layer that knows where it is, unless something is shown already.
    void ensureExtent();
    QRectF layerBounds() const;
    void invalidateViews();
    void renderLayers();
    void compose(QPainter &painter, double devicePixelRatio) const;
    QImage renderOffscreen(const MapGeometry &wanted, int timeoutMs, bool *complete);

    bool isComplete() const;
    int getPercentComplete() const;
    void watchProgress();
    void onProgressTimer();

    void beginInteraction(bool zooming);
    void endInteraction();
    void dragTo(const QPointF &widgetPoint);
    void tellPointer() const;
    void beginZoomBox();
    /// Shows what the box holds.
    void endZoomBox();

    MapView *view;
    Pictures pictures; ///< From the lowest to the topmost.
    Layer *activeLayer = nullptr;

    MapGeometry geometry;
    std::optional<MapGeometry> offscreenGeometry;
    /// What the widget shows while an off-screen picture is being made.
    QImage frozenPicture;
    bool hasExtent = false;
    /// What is to stay visible as a whole when the widget is resized, until the view is moved.
    std::optional<QRectF> fittedRect;
    QColor backgroundColor = Qt::white;

    bool isInteracting = false;
    /// Where the button went down or the last whole-pixel pan ended, while it is held.
    std::optional<QPointF> dragPoint;
    std::optional<QPointF> pointer; // in the widget, while it is over it
    QRubberBand *zoomBox = nullptr; // while one is drawn
    QPointF pressPoint;             // where the last drag or click began
    QTimer wheelTimer;
    QTimer progressTimer;
    int lastPercent = 100;
};

} // namespace Korvane::Map
