#pragma once

#include <QStringList>

#include <memory>

namespace Korvane::Map {

class LayerValueReader;

/// Implemented by layers that can tell the values of their cells.
class ILayerValues
{
public:
    /// A reader of the source that the layer shows now; null while it shows none.
    virtual std::unique_ptr<LayerValueReader> makeValueReader() const = 0;
    /// One name for each band, which may be empty.
    virtual QStringList getBandNames() const = 0;

protected:
    ~ILayerValues() = default;
};

} // namespace Korvane::Map
