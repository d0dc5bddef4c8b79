#include <QDGui/geoimage.h>

#include "deviceaxis.h"

#include <QColor>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace Korvane {

namespace {

/// How \c count image pixels fall onto the device pixels of one axis.
struct PixelAxis
{
    int count = 0;
    double start = 0.0; ///< Exact device coordinate of the image's first edge.
    double end = 0.0;   ///< Of its last edge; less than \c start when the image is turned over.
    double low = 0.0;   ///< Rounded edges, low < high.
    double high = 0.0;
    int first = 0; ///< Device pixels to draw, half open.
    int last = 0;

    bool isFlipped() const { return end < start; }
    bool isCopied() const { return high - low == count; }

    /// Image coordinate, in pixels, under the centre of device pixel \a pixel.
    double imageCoordinate(int pixel) const
    {
        if (!isCopied())
            return (pixel + 0.5 - start) / (end - start) * count;
        const double offset = pixel - low + 0.5;
        return isFlipped() ? count - offset : offset;
    }
};

/// A device pixel's two source pixels and the weight, of 256, of the second one.
struct Tap
{
    int first;
    int second;
    uint weight;
};

std::optional<PixelAxis> pixelAxis(const DeviceAxis &axis, double worldStart, double worldEnd, int count,
                                   double clipLow, double clipHigh)
{
    PixelAxis result;
    result.count = count;
    result.start = axis.toDevice(worldStart);
    result.end = axis.toDevice(worldEnd);
    if (!std::isfinite(result.start) || !std::isfinite(result.end) || result.start == result.end)
        return std::nullopt;
    result.low = roundedEdge(std::min(result.start, result.end));
    result.high = roundedEdge(std::max(result.start, result.end));

    const double low = std::max({result.low, clipLow, roundedEdge(std::min(axis.device1, axis.device2))});
    const double high = std::min({result.high, clipHigh, roundedEdge(std::max(axis.device1, axis.device2))});
    if (!(low < high) || std::abs(low) > 1e9 || std::abs(high) > 1e9)
        return std::nullopt;
    result.first = static_cast<int>(low);
    result.last = static_cast<int>(high);
    return result;
}

std::vector<int> nearestPixels(const PixelAxis &axis)
{
    std::vector<int> pixels;
    pixels.reserve(static_cast<size_t>(axis.last - axis.first));
    for (int i = axis.first; i < axis.last; ++i)
        pixels.push_back(std::clamp(static_cast<int>(std::floor(axis.imageCoordinate(i))), 0, axis.count - 1));
    return pixels;
}

std::vector<Tap> linearTaps(const PixelAxis &axis)
{
    std::vector<Tap> taps;
    taps.reserve(static_cast<size_t>(axis.last - axis.first));
    for (int i = axis.first; i < axis.last; ++i) {
        // Pixel centres lie at half coordinates. Beyond the outer centres the edge pixel goes on unchanged, so that
        // images that meet have no transparent rim between them.
        const double coordinate = std::clamp(axis.imageCoordinate(i) - 0.5, 0.0, axis.count - 1.0);
        const int first = static_cast<int>(coordinate);
        const auto weight = static_cast<uint>(std::lround((coordinate - first) * 256.0));
        taps.push_back({first, std::min(first + 1, axis.count - 1), weight});
    }
    return taps;
}

/// \a a and \a b in the ratio 256 - weight to weight, all four bytes at once.
inline QRgb mixed(QRgb a, QRgb b, uint weight)
{
    const uint inverse = 256 - weight;
    const uint evenBytes = ((a & 0xff00ff) * inverse + (b & 0xff00ff) * weight) >> 8;
    const uint oddBytes = ((a >> 8) & 0xff00ff) * inverse + ((b >> 8) & 0xff00ff) * weight;
    return (evenBytes & 0xff00ff) | (oddBytes & 0xff00ff00);
}

QImage resampledNearest(const QImage &source, const PixelAxis &horizontal, const PixelAxis &vertical)
{
    const std::vector<int> columns = nearestPixels(horizontal);
    const std::vector<int> rows = nearestPixels(vertical);
    QImage result(static_cast<int>(columns.size()), static_cast<int>(rows.size()), source.format());
    if (result.isNull())
        return result;
    for (size_t y = 0; y < rows.size(); ++y) {
        const auto *from = reinterpret_cast<const QRgb *>(source.constScanLine(rows[y]));
        auto *to = reinterpret_cast<QRgb *>(result.scanLine(static_cast<int>(y)));
        for (size_t x = 0; x < columns.size(); ++x)
            to[x] = from[columns[x]];
    }
    return result;
}

/// \a source is premultiplied or opaque.
QImage resampledLinear(const QImage &source, const PixelAxis &horizontal, const PixelAxis &vertical)
{
    const std::vector<Tap> columns = linearTaps(horizontal);
    const std::vector<Tap> rows = linearTaps(vertical);
    QImage result(static_cast<int>(columns.size()), static_cast<int>(rows.size()), source.format());
    if (result.isNull())
        return result;
    for (size_t y = 0; y < rows.size(); ++y) {
        const Tap &row = rows[y];
        const auto *upper = reinterpret_cast<const QRgb *>(source.constScanLine(row.first));
        const auto *lower = reinterpret_cast<const QRgb *>(source.constScanLine(row.second));
        auto *to = reinterpret_cast<QRgb *>(result.scanLine(static_cast<int>(y)));
        for (size_t x = 0; x < columns.size(); ++x) {
            const Tap &column = columns[x];
            const QRgb top = mixed(upper[column.first], upper[column.second], column.weight);
            const QRgb bottom = mixed(lower[column.first], lower[column.second], column.weight);
            to[x] = mixed(top, bottom, row.weight);
        }
    }
    return result;
}

bool isDirectFormat(QImage::Format format)
{
    return format == QImage::Format_ARGB32 || format == QImage::Format_RGB32 ||
           format == QImage::Format_ARGB32_Premultiplied;
}

QImage resampled(const QImage &image, const PixelAxis &horizontal, const PixelAxis &vertical, bool smooth)
{
    if (!smooth && isDirectFormat(image.format()))
        return resampledNearest(image, horizontal, vertical);
    const bool opaque = image.format() == QImage::Format_RGB32;
    const QImage source = opaque ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return smooth ? resampledLinear(source, horizontal, vertical) : resampledNearest(source, horizontal, vertical);
}

/// What can be seen of \a painter's device, in physical pixels. Devices other than images and pixmaps are not limited
/// here: their origin may lie inside a larger buffer.
QRectF visibleDeviceRect(const QPainter &painter, const QTransform &toPhysical)
{
    QRectF visible(-1e9, -1e9, 2e9, 2e9);
    const int deviceType = painter.device()->devType();
    if (deviceType == QInternal::Image || deviceType == QInternal::Pixmap)
        visible = QRectF(0, 0, painter.device()->width(), painter.device()->height());
    if (painter.hasClipping())
        visible &= toPhysical.mapRect(painter.clipBoundingRect());
    return visible;
}

} // namespace

GeoImage::GeoImage(int width, int height, double x1, double y1, double x2, double y2, QImage::Format format,
                   const QColor *fillColor)
    : QImage(width, height, format)
    , x1(x1)
    , y1(y1)
    , x2(x2)
    , y2(y2)
{
    if (fillColor && !isNull())
        fill(*fillColor);
}

GeoImage::GeoImage(const QImage &image, double x1, double y1, double x2, double y2)
    : QImage(image)
    , x1(x1)
    , y1(y1)
    , x2(x2)
    , y2(y2)
{
}

void GeoImage::paint(QPainter &painter, double deviceX1, double deviceY1, double deviceX2, double deviceY2,
                     double worldX1, double worldY1, double worldX2, double worldY2) const
{
    if (isNull() || worldX1 == worldX2 || worldY1 == worldY2)
        return;
    // Rounding has to happen in physical pixels, whatever scale a high-resolution device brings along.
    const QTransform toPhysical = painter.deviceTransform();
    if (toPhysical.type() > QTransform::TxScale) {
        qWarning("GeoImage: painters that rotate or shear are not supported");
        return;
    }
    const QPointF corner1 = toPhysical.map(QPointF(deviceX1, deviceY1));
    const QPointF corner2 = toPhysical.map(QPointF(deviceX2, deviceY2));
    const QRectF visible = visibleDeviceRect(painter, toPhysical);
    const auto horizontal = pixelAxis({corner1.x(), corner2.x(), worldX1, worldX2}, x1, x2, width(),
                                      std::floor(visible.left()), std::ceil(visible.right()));
    const auto vertical = pixelAxis({corner1.y(), corner2.y(), worldY1, worldY2}, y1, y2, height(),
                                    std::floor(visible.top()), std::ceil(visible.bottom()));
    if (!horizontal || !vertical)
        return;

    const QPoint place(horizontal->first, vertical->first);
    painter.save();
    painter.setWorldTransform(toPhysical.inverted() * painter.worldTransform());
    const bool plainCopy =
        horizontal->isCopied() && !horizontal->isFlipped() && vertical->isCopied() && !vertical->isFlipped();
    if (plainCopy) {
        const QPoint origin(static_cast<int>(horizontal->low), static_cast<int>(vertical->low));
        const QSize size(horizontal->last - horizontal->first, vertical->last - vertical->first);
        painter.drawImage(place, *this, QRect(place - origin, size));
    } else {
        const bool smooth = painter.testRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(place, resampled(*this, *horizontal, *vertical, smooth));
    }
    painter.restore();
}

} // namespace Korvane
