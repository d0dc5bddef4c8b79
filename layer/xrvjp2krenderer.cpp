#include "xrvjp2krenderer.h"

#include "settings/pluginsettings.h"
#include "tonetable.h"
#include "xrvjp2klayer.h"

#include <QColor>
#include <QPainter>

#include <algorithm>
#include <exception>
#include <numeric>

namespace Korvane {

namespace {

/// A picture of more pixels than this is taken as one that cannot be made. Cells shown thousands of pixels wide are
/// asked for whole, and the system would hand out gigabytes that it does not have.
constexpr std::int64_t kMaxImagePixels = std::int64_t(1) << 26;

/// Yields \a value, a NaN included, unless it lies beyond one of the bounds.
double clamped(double value, double low, double high)
{
    const double upper = high < value ? high : value;
    return upper < low ? low : upper;
}

bool isOpacityBand(const PLKBandInfo &band)
{
    return QString::fromUtf8(band.szDesc).toLower() == QLatin1String("allopacity");
}

} // namespace

XRVJP2kRenderer::XRVJP2kRenderer(XRVJP2kLayer *owner)
    : ownerLayer(owner)
{
}

XRVJP2kRenderer::~XRVJP2kRenderer()
{
    // Before anything of this class goes: a callback may be running.
    Close(true);
}

int XRVJP2kRenderer::defaultTransformClip()
{
    return PluginSettings::read(PluginSettings::kDefaultClipTransform);
}

PLK::CError XRVJP2kRenderer::openFile(const QString &path, bool progressive)
{
    return openFile(path, progressive, defaultTransformClip());
}

PLK::CError XRVJP2kRenderer::openFile(const QString &path, bool progressive, int defaultClip)
{
    try {
        const std::wstring name = path.toStdWString();
        PLK::CError error = Open(name.c_str(), progressive, false);
        if (error)
            return error;
        if (GetFileInfo() && GetFile()) {
            hasOpacityBand = getOpacityBandNumber() >= 0;
            applyDefaultTransform(defaultClip);
        }
        qualityLayers = MetadataJp2().Layers();
        return error;
    } catch (const std::exception &exception) {
        return {PLK_ERR_OUT_OF_MEMORY, exception.what()};
    }
}

void XRVJP2kRenderer::applyDefaultTransform(int defaultClip)
{
    // Cells of 8 bits are what the screen shows. Of wider ones a few outliers may take up most of the range: stretched
    // to show these too, all others would look alike.
    const PLKCellType cellType = GetFileInfo()->eCellType;
    const bool isByte = cellType == PLKCT_UINT8 || cellType == PLKCT_INT8;
    calculateMinMaxTransforms(static_cast<std::uint8_t>(isByte ? 100 : defaultClip));
}

int XRVJP2kRenderer::getOpacityBandNumber() const
{
    const PLKFileInfo *info = GetFileInfo();
    if (!info || !GetFile())
        return -1;
    for (int band = info->nBands - 1; band >= 0; --band) {
        if (isOpacityBand(info->pBands[band]))
            return band;
    }
    return -1;
}

void XRVJP2kRenderer::setTransparency(double value)
{
    if (value != transparency)
        transparency = clamped(value, 0.0, 1.0);
}

void XRVJP2kRenderer::setContrast(double value)
{
    if (value != contrast)
        contrast = clamped(value, -2.0, 2.0);
}

void XRVJP2kRenderer::setBrightness(double value)
{
    if (value != brightness)
        brightness = clamped(value, -2.0, 2.0);
}

void XRVJP2kRenderer::setAzumith(double value)
{
    // Compared with the brightness, not with the azimuth: callers rely on the value that is left out here.
    if (value != brightness)
        azimuth = clamped(value, 0.0, 360.0);
}

void XRVJP2kRenderer::setElevation(double value)
{
    if (value != elevation)
        elevation = clamped(value, 0.0, 90.0);
}

void XRVJP2kRenderer::setJp2QualityLayers(int layers)
{
    if (layers < 1 || layers > getMaxJp2QualityLayers())
        return;
    qualityLayers = layers;
    ParametersJp2().Decompress().SetLayersToDecode(layers);
}

void XRVJP2kRenderer::calculateMinMaxTransforms(std::uint8_t percent)
{
    clipPercent = percent;
    const PLKFileInfo *info = GetFileInfo();
    if (!info)
        return;
    // 8-bit cells shown unclipped need no stretch.
    if (info->eCellType == PLKCT_UINT8 && percent == 100) {
        ClearTransforms();
        return;
    }
    try {
        applyMinMaxTransforms();
    } catch (const std::exception &) {
        // The transforms stay as they were, as with an error of the SDK.
    }
}

void XRVJP2kRenderer::applyMinMaxTransforms()
{
    // Opacity is no brightness: stretched with the colours, half of it would become all or nothing.
    const auto bandCount = static_cast<std::uint16_t>(GetFileInfo()->nBands - (hasOpacityBand ? 1 : 0));
    std::vector<unsigned> bands(bandCount);
    std::iota(bands.begin(), bands.end(), 0U);
    std::vector<std::unique_ptr<PLK::API::CMinMaxTransform>> transforms;
    if (CalculateMinMaxTransforms(bandCount, bands.data(), &transforms, clipPercent, 100))
        return;
    for (unsigned band = 0; band < bandCount && band < transforms.size(); ++band)
        SetTransform(band, std::move(transforms[band]));
}

PLKRPCData *XRVJP2kRenderer::getRPCData() const
{
    PLKRPCData *data = nullptr;
    return GetRPCData(&data) ? nullptr : data;
}

PLKFileStatistics *XRVJP2kRenderer::getClientStatistics()
{
    PLKFileStatistics *statistics = nullptr;
    return GetClientStatistics(&statistics) ? nullptr : statistics;
}

void XRVJP2kRenderer::cancelRead()
{
    cancelRequested = true;
    const std::lock_guard<std::recursive_mutex> locker(imageMutex);
}

void XRVJP2kRenderer::clearImage()
{
    const std::lock_guard<std::recursive_mutex> locker(imageMutex);
    currentImage.reset();
}

std::unique_ptr<GeoImage> XRVJP2kRenderer::makeImage(int width, int height, double x1, double y1, double x2,
                                                     double y2) const
{
    if (std::int64_t(width) * height > kMaxImagePixels)
        return nullptr;
    auto image = std::make_unique<GeoImage>(width, height, x1, y1, x2, y2, QImage::Format_ARGB32, nullptr);
    return image->isNull() ? nullptr : std::move(image);
}

PLKReadStatus XRVJP2kRenderer::readView(int width, int height, double x1, double y1, double x2, double y2)
{
    const bool packed = readRGBA;
    if (!GetFile() || (packed && (width <= 0 || height <= 0)))
        return PLK_READ_FAILED;
    try {
        std::unique_ptr<GeoImage> image = makeImage(width, height, x1, y1, x2, y2);
        // No fault of the source: the picture before stays, and the map hears of the pass all the same.
        if (!image)
            return PLK_READ_SUCCESS;
        // A mask may have a single bit, whose 1 means opaque and not 1 of 255. Counts from the first line on.
        ParametersDecompress().SetAutoscaleOpacitybandUpEnabled(true);
        const PLKReadStatus status = packed ? readPackedLines(*image) : readBandLines(*image);
        return finishRead(status, std::move(image));
    } catch (const std::exception &) {
        return PLK_READ_FAILED;
    }
}

PLKReadStatus XRVJP2kRenderer::readPackedLines(GeoImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        // The bytes of an ARGB32 pixel lie in memory as blue, green, red, alpha.
        const PLKReadStatus status = ReadLineBGRA(image.scanLine(y));
        if (status != PLK_READ_SUCCESS || cancelRequested)
            return status;
    }
    return PLK_READ_SUCCESS;
}

PLKReadStatus XRVJP2kRenderer::readBandLines(GeoImage &image)
{
    prepareLineBuffers(image.width());
    std::array<std::uint8_t *, 4> lines{};
    std::transform(lineBuffers.begin(), lineBuffers.end(), lines.begin(), [](auto &buffer) { return buffer.data(); });
    for (int y = 0; y < image.height(); ++y) {
        const PLKReadStatus status = ReadLineBIL(lines.data(), PLKCT_UINT8);
        if (status != PLK_READ_SUCCESS || cancelRequested)
            return status;
        composeLine(reinterpret_cast<QRgb *>(image.scanLine(y)), image.width());
    }
    return PLK_READ_SUCCESS;
}

void XRVJP2kRenderer::prepareLineBuffers(int width)
{
    if (width != lineBufferWidth) {
        for (auto &buffer : lineBuffers)
            buffer.assign(static_cast<size_t>(width), 0);
        lineBufferWidth = width;
    }
    // Only a fourth band writes to the alpha buffer; what an earlier view with one left there must not show through.
    if (GetSetViewInfo().nBands < 4)
        std::fill(lineBuffers[3].begin(), lineBuffers[3].end(), std::uint8_t(255));
}

void XRVJP2kRenderer::composeLine(QRgb *line, int width) const
{
    const auto &[red, green, blue, alpha] = lineBuffers;
    for (size_t x = 0; x < static_cast<size_t>(width); ++x)
        line[x] = qRgba(red[x], green[x], blue[x], alpha[x]);
}

PLKReadStatus XRVJP2kRenderer::finishRead(PLKReadStatus status, std::unique_ptr<GeoImage> image)
{
    // A read that was cancelled or failed must not replace a complete picture by a part of one.
    if (status != PLK_READ_SUCCESS || cancelRequested) {
        cancelRequested = false;
        return status;
    }
    // The old picture goes with the argument, when the lock is given back: no paint waits for it to be freed.
    const std::lock_guard<std::recursive_mutex> locker(imageMutex);
    currentImage.swap(image);
    return status;
}

PLKReadStatus XRVJP2kRenderer::RefreshPass(PLKSetViewInfo *info)
{
    // No lock before the picture is read: the GUI thread may hold it while it sets the next view.
    if (IsReadCancelPending() || IsClosePending())
        return PLK_READ_CANCELLED;
    if (info->nSizeX == 0 || info->nSizeY == 0)
        return PLK_READ_SUCCESS;
    PLKReadStatus status = PLK_READ_SUCCESS;
    if (IsProgressive()) {
        status = readView(static_cast<int>(info->nSizeX), static_cast<int>(info->nSizeY), info->fTopLeftX,
                          info->fTopLeftY, info->fBottomRightX, info->fBottomRightY);
        if (status != PLK_READ_SUCCESS)
            return status;
    }
    blocksAvailable = static_cast<std::uint32_t>(GetAllBlocksAvailable());
    blocksInView = static_cast<std::uint32_t>(GetAllBlocksInView());
    percentComplete = static_cast<std::uint8_t>(GetPercentComplete());
    ownerLayer->refresh(info->fTopLeftX, info->fTopLeftY, info->fBottomRightX, info->fBottomRightY);
    return status;
}

void XRVJP2kRenderer::readBlockingView()
{
    // After its last line a view begins again at the top, so every repaint can read it without setting it anew.
    const PLKSetViewInfo view = GetSetViewInfo();
    readView(static_cast<int>(view.nSizeX), static_cast<int>(view.nSizeY), view.fTopLeftX, view.fTopLeftY,
             view.fBottomRightX, view.fBottomRightY);
}

void XRVJP2kRenderer::paint(QPainter &painter, const QRectF &worldRect, const QRect &deviceRect)
{
    if (!IsProgressive() && IsViewSet())
        readBlockingView();

    const std::lock_guard<std::recursive_mutex> locker(imageMutex);
    if (!currentImage)
        return;
    std::unique_ptr<GeoImage> derivedImage;
    // A picture with a tone gets no veil.
    if (contrast != 1.0 || brightness != 1.0)
        derivedImage = toneMappedImage();
    else if (hillShade)
        derivedImage = hillShadeOverlay();
    const GeoImage &picture = derivedImage ? *derivedImage : *currentImage;

    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, pixmapSmoothing);
    painter.setOpacity(transparency);
    picture.paint(painter, deviceRect.x(), deviceRect.y(), deviceRect.x() + deviceRect.width(),
                  deviceRect.y() + deviceRect.height(), worldRect.x(), worldRect.y(), worldRect.x() + worldRect.width(),
                  worldRect.y() + worldRect.height());
    painter.restore();
}

std::unique_ptr<GeoImage> XRVJP2kRenderer::toneMappedImage() const
{
    const ToneTable table = makeToneTable(contrast, brightness);
    const GeoImage &source = *currentImage;
    auto toned = std::make_unique<GeoImage>(source.width(), source.height(), source.getX1(), source.getY1(),
                                            source.getX2(), source.getY2(), source.format(), nullptr);
    // Without memory for a copy the picture is an empty one.
    for (int y = 0; y < toned->height(); ++y)
        applyToneTable(table, reinterpret_cast<const QRgb *>(source.constScanLine(y)),
                       reinterpret_cast<QRgb *>(toned->scanLine(y)), source.width());
    return toned;
}

std::unique_ptr<GeoImage> XRVJP2kRenderer::hillShadeOverlay() const
{
    const GeoImage &source = *currentImage;
    const QColor transparentWhite(255, 255, 255, 0);
    auto overlay = std::make_unique<GeoImage>(source.width(), source.height(), source.getX1(), source.getY1(),
                                              source.getX2(), source.getY2(), source.format(), &transparentWhite);
    if (overlay->isNull())
        return overlay;
    // The painter applies the transparency once more: the veil gets darker with its square.
    const QRgb veil = qRgba(0, 0, 0, truncatedToByte(transparency * 255));
    // One pixel at the top and left and two at the bottom and right stay clear.
    for (int y = 1; y <= source.height() - 3; ++y) {
        auto *line = reinterpret_cast<QRgb *>(overlay->scanLine(y));
        if (source.width() > 3)
            std::fill(line + 1, line + source.width() - 2, veil);
    }
    return overlay;
}

} // namespace Korvane
