#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QVariant>

namespace Korvane::Map {
class IRasterLayerHistogram;
class Layer;
class RasterLayer;
} // namespace Korvane::Map

namespace Viewer {

/// Puts what a layer's getters and its Qt properties say into JSON. GUI thread.
///
/// Keys: the getters' names without "get" ("cellSizeX", "coordSysName"), as the host's layer interfaces declare them;
/// "bounds" with x1, y1 (corner of the first cell) to x2, y2; "properties" with every readable property of the layer's
/// own class under the property's own name; "histograms" with one object per band, whose "buckets" are sums of
/// "bucketsPerEntry" neighbours so that there are no more than 256. All cells are counted for these, which is waited
/// for; of streams and of images with more than 2,000 million cells of all bands (some minutes) they may be an
/// estimate, and have "estimated": true then. A number that is not finite becomes null.
class LayerDescriber
{
public:
    static QJsonObject describe(Korvane::Map::Layer &layer);
    /// Strings, numbers, flags, lists of them, colours (as #aarrggbb) and sizes; a null for what has no text.
    static QJsonValue toJson(const QVariant &value);

private:
    static void addLayerGetters(const Korvane::Map::Layer &layer, QJsonObject *object);
    static void addRasterGetters(const Korvane::Map::RasterLayer &layer, QJsonObject *object);
    static void countCells(Korvane::Map::Layer &layer);
    static QJsonArray histograms(Korvane::Map::IRasterLayerHistogram &layer);
    static QJsonObject properties(const QObject &layer);
};

} // namespace Viewer
