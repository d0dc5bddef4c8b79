#include "layerdescriber.h"

#include "sources/sources.h"

#include <QDGui/ilayerstatistics.h>
#include <QDGui/irasterlayerhistogram.h>
#include <QDGui/rasterlayer.h>

#include <QColor>
#include <QJsonArray>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QSize>
#include <QThread>

#include <cmath>
#include <numeric>

namespace Viewer {

using Korvane::Map::HistogramT;
using Korvane::Map::ILayerStatistics;
using Korvane::Map::IRasterLayerHistogram;
using Korvane::Map::Layer;
using Korvane::Map::RasterLayer;

namespace {

constexpr int kMaxEntries = 256;
/// Of all bands; two cores take some minutes.
constexpr double kMaxCellsToCount = 2e9;
constexpr unsigned long kPollMs = 5;

QJsonValue number(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue();
}

QJsonObject boundsObject(const QRectF &bounds)
{
    return {{QStringLiteral("x1"), number(bounds.x())},
            {QStringLiteral("y1"), number(bounds.y())},
            {QStringLiteral("x2"), number(bounds.x() + bounds.width())},
            {QStringLiteral("y2"), number(bounds.y() + bounds.height())}};
}

QString colorSpaceName(RasterLayer::ColorSpace colorSpace)
{
    switch (colorSpace) {
    case RasterLayer::RGB:
        return QStringLiteral("RGB");
    case RasterLayer::Greyscale:
        return QStringLiteral("Greyscale");
    case RasterLayer::Multiband:
        return QStringLiteral("Multiband");
    case RasterLayer::UnknownColorSpace:
        break;
    }
    return QStringLiteral("Unknown");
}

QJsonArray intArray(const QVector<int> &values)
{
    QJsonArray array;
    for (int value : values)
        array.append(value);
    return array;
}

/// JSON has no whole numbers beyond those of a double; what is larger loses its last digits.
QJsonValue wholeNumber(quint64 value)
{
    return static_cast<double>(value);
}

/// At most kMaxEntries counts, each of as many neighbouring buckets as that takes.
QJsonArray foldedBuckets(const QVector<quint64> &buckets, int bucketsPerEntry)
{
    QJsonArray entries;
    for (int first = 0; first < buckets.size(); first += bucketsPerEntry) {
        const int end = qMin(first + bucketsPerEntry, buckets.size());
        entries.append(wholeNumber(std::accumulate(buckets.begin() + first, buckets.begin() + end, quint64(0))));
    }
    return entries;
}

QJsonObject histogramObject(const HistogramT<quint64> &histogram)
{
    const int bucketsPerEntry = (histogram.buckets.size() + kMaxEntries - 1) / kMaxEntries;
    return {{QStringLiteral("bandName"), histogram.bandName},
            {QStringLiteral("minimumValue"), wholeNumber(histogram.minimumValue)},
            {QStringLiteral("maximumValue"), wholeNumber(histogram.maximumValue)},
            {QStringLiteral("mean"), number(histogram.mean)},
            {QStringLiteral("median"), number(histogram.median)},
            {QStringLiteral("standardDeviation"), number(histogram.standardDeviation)},
            {QStringLiteral("mode"), number(histogram.mode)},
            {QStringLiteral("bucketCount"), wholeNumber(histogram.bucketCount)},
            {QStringLiteral("largestCount"), wholeNumber(histogram.largestCount)},
            {QStringLiteral("smallestCount"), wholeNumber(histogram.smallestCount)},
            {QStringLiteral("bucketsPerEntry"), bucketsPerEntry},
            {QStringLiteral("buckets"), foldedBuckets(histogram.buckets, qMax(1, bucketsPerEntry))}};
}

QJsonValue propertyValue(const QMetaProperty &property, const QObject &object)
{
    const QVariant value = property.read(&object);
    if (property.isEnumType() && value.isValid()) {
        const char *key = property.enumerator().valueToKey(value.toInt());
        return key ? QJsonValue(QString::fromLatin1(key)) : QJsonValue(value.toInt());
    }
    return LayerDescriber::toJson(value);
}

} // namespace

QJsonObject LayerDescriber::describe(Layer &layer)
{
    QJsonObject object;
    object[QStringLiteral("className")] = QString::fromLatin1(layer.metaObject()->className());
    addLayerGetters(layer, &object);
    if (const auto *raster = qobject_cast<const RasterLayer *>(&layer))
        addRasterGetters(*raster, &object);
    countCells(layer);
    if (auto *source = dynamic_cast<IRasterLayerHistogram *>(&layer))
        object[QStringLiteral("histograms")] = histograms(*source);
    object[QStringLiteral("properties")] = properties(layer);
    return object;
}

void LayerDescriber::addLayerGetters(const Layer &layer, QJsonObject *object)
{
    object->insert(QStringLiteral("dataSource"), Sources::withoutCredentials(Sources::ofLayer(layer)));
    object->insert(QStringLiteral("description"), layer.getDescription());
    object->insert(QStringLiteral("comments"), layer.getComments());
    object->insert(QStringLiteral("format"), layer.getFormat());
    object->insert(QStringLiteral("protocol"), layer.getProtocol());
    object->insert(QStringLiteral("coordSysName"), layer.getCoordSysName());
    object->insert(QStringLiteral("bounds"), boundsObject(layer.getBounds()));
    object->insert(QStringLiteral("valid"), layer.isValid());
    object->insert(QStringLiteral("visible"), layer.isVisible());
    object->insert(QStringLiteral("hasIcon"), !layer.getIcon().isNull());
    object->insert(QStringLiteral("percentComplete"), layer.getPercentComplete());
    object->insert(QStringLiteral("lastError"), layer.getLastError());
}

void LayerDescriber::addRasterGetters(const RasterLayer &layer, QJsonObject *object)
{
    object->insert(QStringLiteral("width"), layer.getSize().width());
    object->insert(QStringLiteral("height"), layer.getSize().height());
    object->insert(QStringLiteral("cellSizeX"), number(layer.getCellSizeX()));
    object->insert(QStringLiteral("cellSizeY"), number(layer.getCellSizeY()));
    object->insert(QStringLiteral("cellType"), layer.getCellType());
    object->insert(QStringLiteral("colorSpace"), colorSpaceName(layer.getColorSpace()));
    object->insert(QStringLiteral("numberOfBands"), layer.getNumberOfBands());
    object->insert(QStringLiteral("bandList"), intArray(layer.getBandList()));
    object->insert(QStringLiteral("hasOpacity"), layer.hasOpacity());
    object->insert(QStringLiteral("opacityBandNumber"), layer.getOpacityBandNumber());
    object->insert(QStringLiteral("rotation"), number(layer.getRotation()));
    object->insert(QStringLiteral("transparency"), number(layer.getTransparency()));
    object->insert(QStringLiteral("epsgCode"), layer.getEpsgCode());
}

/// Nothing else goes on meanwhile: this is for programs that end when the layer is described.
void LayerDescriber::countCells(Layer &layer)
{
    auto *source = dynamic_cast<ILayerStatistics *>(&layer);
    const auto *raster = qobject_cast<const RasterLayer *>(&layer);
    if (!source || !raster || !source->areCellsLocal())
        return;
    const QSize size = raster->getSize();
    if (double(size.width()) * size.height() * raster->getNumberOfBands() > kMaxCellsToCount)
        return;
    source->countStatistics();
    while (source->getStatisticsState() == ILayerStatistics::StatisticsState::Counting)
        QThread::msleep(kPollMs);
}

QJsonArray LayerDescriber::histograms(IRasterLayerHistogram &layer)
{
    QJsonArray bands;
    const QVector<HistogramT<quint64>> found = layer.getHistograms(false, false, QSize(), 0, 0, 0, 0);
    const auto *statistics = dynamic_cast<const ILayerStatistics *>(&layer);
    const bool isEstimated = statistics && statistics->getStatisticsState() != ILayerStatistics::StatisticsState::Exact;
    for (const HistogramT<quint64> &histogram : found) {
        QJsonObject band = histogramObject(histogram);
        if (isEstimated)
            band[QStringLiteral("estimated")] = true;
        bands.append(band);
    }
    return bands;
}

QJsonObject LayerDescriber::properties(const QObject &layer)
{
    QJsonObject object;
    const QMetaObject *meta = layer.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (property.isReadable())
            object[QString::fromLatin1(property.name())] = propertyValue(property, layer);
    }
    return object;
}

QJsonValue LayerDescriber::toJson(const QVariant &value)
{
    switch (static_cast<QMetaType::Type>(value.type())) {
    case QMetaType::Double:
    case QMetaType::Float:
        return number(value.toDouble());
    case QMetaType::QColor:
        return value.value<QColor>().name(QColor::HexArgb);
    case QMetaType::QSize:
        return QJsonObject{{QStringLiteral("width"), value.toSize().width()},
                           {QStringLiteral("height"), value.toSize().height()}};
    default:
        break;
    }
    if (QMetaType::typeFlags(value.userType()) & QMetaType::IsEnumeration)
        return value.toInt();
    if (value.canConvert<QVector<int>>() && value.userType() == qMetaTypeId<QVector<int>>())
        return intArray(value.value<QVector<int>>());
    return QJsonValue::fromVariant(value);
}

} // namespace Viewer
