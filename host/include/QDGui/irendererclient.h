#pragma once

class QRectF;

namespace Korvane::Map {

class RasterLayer;

/// Whoever wants to hear, besides the map view, that a raster layer has something new to show.
class IRendererClient
{
public:
    /// \a layer has new pixels in \a worldRect (null: anywhere). Called on the layer's own thread, never from within
    /// Layer::refresh().
    virtual void layerRefreshed(RasterLayer *layer, const QRectF &worldRect) = 0;

protected:
    ~IRendererClient() = default;
};

} // namespace Korvane::Map
