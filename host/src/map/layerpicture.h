#pragma once

#include "mapgeometry.h"

#include <QElapsedTimer>
#include <QImage>
#include <QRegion>

class QPainter;

namespace Korvane::Map {

class Layer;

/// What one layer drew for the current view, kept so that a layer is asked to draw again only where it changed: a
/// blocking layer decodes each time it draws.
class LayerPicture
{
public:
    explicit LayerPicture(Layer *layer);

    Layer *getLayer() const { return layer; }

    /// The view changed: the layer is told and draws anew on the next render().
    void invalidateView();
    /// The layer changed inside \a deviceRect.
    void invalidate(const QRect &deviceRect);
    /// Takes over whether the layer is visible; returns whether that changed.
    bool syncVisibility();

    void beginUpdate(bool zooming);
    /// Ends what beginUpdate() began, if it did; the view is announced once more.
    void endUpdate();

    /// Announces the view and has the layer draw, where that is due.
    void render(const MapGeometry &geometry);
    /// Draws the picture with its top left at the origin of \a painter.
    void draw(QPainter &painter, double devicePixelRatio) const;

    /// Percentage of the view that is decoded; 100 for layers that are hidden or not in view.
    int getPercentComplete(const MapGeometry &geometry) const;
    /// Whether the picture shows everything that the layer is going to give for this view.
    bool isComplete(const MapGeometry &geometry);

private:
    bool isInView(const MapGeometry &geometry) const;
    void announceView(const MapGeometry &geometry);
    bool isSettled(const MapGeometry &geometry);

    Layer *layer;
    QImage canvas;
    QRegion dirtyRegion;
    bool isViewStale = true;
    bool isVisible;
    bool isUpdating = false;

    /// Runs from when the layer was first seen at 100 per cent of this view.
    QElapsedTimer sinceDecoded;
    quint64 refreshCountAtView = 0;
    quint64 refreshCountAtDecoded = 0;
};

} // namespace Korvane::Map
