#include "imageresampler.h"

#include <algorithm>
#include <cmath>

namespace Korvane {

namespace {

/// Shorter runs are not worth the call.
constexpr size_t kMinRun = 16;

/// \a a and \a b in the ratio 256 - weight to weight, all four bytes at once.
inline QRgb mixed(QRgb a, QRgb b, uint weight)
{
    const uint inverse = 256 - weight;
    const uint evenBytes = ((a & 0xff00ff) * inverse + (b & 0xff00ff) * weight) >> 8;
    const uint oddBytes = ((a >> 8) & 0xff00ff) * inverse + ((b >> 8) & 0xff00ff) * weight;
    return (evenBytes & 0xff00ff) | (oddBytes & 0xff00ff00);
}

/// As mixed(), byte by byte so that the compiler can take many at a time.
void mixRows(const QRgb *upper, const QRgb *lower, uint weight, QRgb *to, int count)
{
    const auto *above = reinterpret_cast<const quint8 *>(upper);
    const auto *below = reinterpret_cast<const quint8 *>(lower);
    auto *bytes = reinterpret_cast<quint8 *>(to);
    const auto lowerWeight = static_cast<quint16>(weight);
    const auto upperWeight = static_cast<quint16>(256 - weight);
    const size_t byteCount = static_cast<size_t>(count) * sizeof(QRgb);
    for (size_t i = 0; i < byteCount; ++i)
        bytes[i] = static_cast<quint8>(static_cast<quint16>(above[i] * upperWeight + below[i] * lowerWeight) >> 8);
}

bool isDirectFormat(QImage::Format format)
{
    return format == QImage::Format_ARGB32 || format == QImage::Format_RGB32 ||
           format == QImage::Format_ARGB32_Premultiplied;
}

/// Every pixel of \a from with its right neighbour; \a weights has one entry per byte.
void mixNeighbours(const QRgb *from, const quint16 *weights, QRgb *to, size_t count)
{
    const auto *left = reinterpret_cast<const quint8 *>(from);
    const auto *right = reinterpret_cast<const quint8 *>(from + 1);
    auto *bytes = reinterpret_cast<quint8 *>(to);
    for (size_t i = 0; i < count * sizeof(QRgb); ++i)
        bytes[i] = static_cast<quint8>(static_cast<quint16>(left[i] * (256 - weights[i]) + right[i] * weights[i]) >> 8);
}

bool isOpaque(const QRgb *row, int count)
{
    QRgb all = 0xff000000;
    for (int x = 0; x < count; ++x)
        all &= row[x];
    return all == 0xff000000;
}

} // namespace

ImageResampler::ImageResampler(const QImage &image, const PixelAxis &horizontal, const PixelAxis &vertical, bool smooth)
    : source(isDirectFormat(image.format()) ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied))
    , stripFormat(source.format())
    , isSmooth(smooth)
    , columnCount(horizontal.last - horizontal.first)
    , rowCount(vertical.last - vertical.first)
{
    if (isSmooth) {
        // What is see-through must not bleed its colour: pixels are mixed premultiplied.
        if (stripFormat == QImage::Format_ARGB32)
            stripFormat = QImage::Format_ARGB32_Premultiplied;
        smoothColumns = linearTaps(horizontal);
        smoothRows = linearTaps(vertical);
        findRuns();
    } else {
        nearestColumns = nearestPixels(horizontal);
        nearestRows = nearestPixels(vertical);
    }
}

std::vector<int> ImageResampler::nearestPixels(const PixelAxis &axis)
{
    std::vector<int> pixels;
    pixels.reserve(static_cast<size_t>(axis.last - axis.first));
    for (int i = axis.first; i < axis.last; ++i)
        pixels.push_back(std::clamp(static_cast<int>(std::floor(axis.imageCoordinate(i))), 0, axis.count - 1));
    return pixels;
}

std::vector<ImageResampler::Tap> ImageResampler::linearTaps(const PixelAxis &axis)
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

void ImageResampler::fill(QImage *strip, int first, int count)
{
    for (int y = 0; y < count; ++y) {
        auto *to = reinterpret_cast<QRgb *>(strip->scanLine(y));
        const auto row = static_cast<size_t>(first + y);
        if (isSmooth) {
            const Tap &tap = smoothRows[row];
            const QRgb *upper = smoothRow(tap.first);
            mixRows(upper, smoothRow(tap.second), tap.weight, to, columnCount);
        } else {
            std::copy_n(nearestRow(nearestRows[row]), columnCount, to);
        }
    }
}

const QRgb *ImageResampler::nearestRow(int index)
{
    Line &line = lines[0];
    if (line.index != index) {
        const auto *from = reinterpret_cast<const QRgb *>(source.constScanLine(index));
        line.index = index;
        line.pixels.resize(nearestColumns.size());
        for (size_t x = 0; x < nearestColumns.size(); ++x)
            line.pixels[x] = from[nearestColumns[x]];
    }
    return line.pixels.data();
}

/// Valid until two further rows have been asked for.
const QRgb *ImageResampler::smoothRow(int index)
{
    for (size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].index == index) {
            latestLine = i;
            return lines[i].pixels.data();
        }
    }
    latestLine = 1 - latestLine;
    stretch(index, &lines[latestLine]);
    return lines[latestLine].pixels.data();
}

void ImageResampler::stretch(int index, Line *line)
{
    const QRgb *from = premultipliedRow(index);
    line->index = index;
    line->pixels.resize(smoothColumns.size());
    for (const Run &run : smoothRuns) {
        QRgb *to = line->pixels.data() + run.start;
        if (run.count >= kMinRun) {
            mixNeighbours(from + smoothColumns[run.start].first, byteWeights.data() + run.start * sizeof(QRgb), to,
                          run.count);
            continue;
        }
        for (size_t i = 0; i < run.count; ++i) {
            const Tap &column = smoothColumns[run.start + i];
            to[i] = mixed(from[column.first], from[column.second], column.weight);
        }
    }
}

void ImageResampler::findRuns()
{
    byteWeights.reserve(smoothColumns.size() * sizeof(QRgb));
    for (size_t x = 0; x < smoothColumns.size(); ++x) {
        const Tap &column = smoothColumns[x];
        byteWeights.insert(byteWeights.end(), sizeof(QRgb), static_cast<quint16>(column.weight));
        const bool goesOn = x > 0 && column.first == smoothColumns[x - 1].first + 1 &&
                            smoothColumns[x - 1].second == column.first && column.second == column.first + 1;
        if (goesOn)
            ++smoothRuns.back().count;
        else
            smoothRuns.push_back({x, 1});
    }
}

const QRgb *ImageResampler::premultipliedRow(int index)
{
    const auto *row = reinterpret_cast<const QRgb *>(source.constScanLine(index));
    if (source.format() != QImage::Format_ARGB32 || isOpaque(row, source.width()))
        return row;
    premultiplied.resize(static_cast<size_t>(source.width()));
    std::transform(row, row + source.width(), premultiplied.begin(), [](QRgb pixel) { return qPremultiply(pixel); });
    return premultiplied.data();
}

} // namespace Korvane
