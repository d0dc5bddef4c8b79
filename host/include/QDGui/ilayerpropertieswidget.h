#pragma once

#include <QObject>

namespace Korvane {

namespace Map {
class Layer;
}

/// A page about one layer, implemented by widgets.
class ILayerPropertiesWidget
{
public:
    /// Shows \a pLayer, which stays the caller's.
    virtual void setLayer(Korvane::Map::Layer *pLayer) = 0;
    /// Brings what the person changed on the page into the layer.
    virtual void apply() = 0;

protected:
    ~ILayerPropertiesWidget() = default;
};

} // namespace Korvane

Q_DECLARE_INTERFACE(Korvane::ILayerPropertiesWidget, "com.korvane.viewer.ILayerPropertiesWidget/1.0")
