#pragma once

#include <QObject>

namespace Korvane::Map {
class Layer;
} // namespace Korvane::Map

/// Makes layers.
class ILayerPlugin
{
public:
    /// A new layer that the caller owns. With \a askForUrl the plug-in asks the person for an address and opens it;
    /// null when that was cancelled or failed. Without, the layer has no data source yet.
    virtual Korvane::Map::Layer *createLayer(bool askForUrl) = 0;

protected:
    ~ILayerPlugin() = default;
};

Q_DECLARE_INTERFACE(ILayerPlugin, "com.korvane.viewer.ILayerPlugin/1.0")
