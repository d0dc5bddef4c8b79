#pragma once

#include "layer/xrvjp2klayer.h"
#include "layer/xrvjp2krenderer.h"

namespace Korvane {

/// The tests' window on what a layer and its renderers keep to themselves.
class LayerProbe
{
public:
    struct LastView
    {
        double x1, y1, x2, y2;
        int width, height;
    };

    static XRVJP2kRenderer *renderer(const XRVJP2kLayer &layer) { return layer.renderer.get(); }
    static XRVJP2kRenderer *backingRenderer(const XRVJP2kLayer &layer) { return layer.backingRenderer.get(); }
    static LastView lastView(const XRVJP2kLayer &layer)
    {
        return {layer.lastViewX1, layer.lastViewY1,    layer.lastViewX2,
                layer.lastViewY2, layer.lastViewWidth, layer.lastViewHeight};
    }
    static bool isViewSet(const XRVJP2kLayer &layer) { return layer.viewSet; }
    static bool isUpdating(const XRVJP2kLayer &layer) { return layer.updating; }
    static qint64 &lastReconnectTime(XRVJP2kLayer &layer) { return layer.lastReconnectTime; }

    static const GeoImage *image(const XRVJP2kRenderer &renderer) { return renderer.currentImage.get(); }
    static void setImage(XRVJP2kRenderer &renderer, const GeoImage &image)
    {
        renderer.currentImage = std::make_unique<GeoImage>(image);
    }
    static bool isSmoothing(const XRVJP2kRenderer &renderer) { return renderer.pixmapSmoothing; }
    static bool isCancelRequested(const XRVJP2kRenderer &renderer) { return renderer.cancelRequested; }
    static void requestCancel(XRVJP2kRenderer &renderer) { renderer.cancelRequested = true; }
};

} // namespace Korvane
