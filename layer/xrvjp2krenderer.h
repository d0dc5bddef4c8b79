#pragma once

#include <QDGui/geoimage.h>
#include <xrv60/plkview.h>

#include <QRect>
#include <QRectF>
#include <QString>

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

class QPainter;

namespace Korvane {

namespace Map {
class Layer;
}

class XRVJP2kLayer;

/// Turns one open image into pictures on the map: a view of the format SDK that decodes what the layer last asked for
/// into an image with a world extent, keeps the newest finished image and paints it with the layer's settings.
///
/// Everything runs on the GUI thread, but RefreshPass(), which the SDK calls on its own thread for progressive views,
/// and the opening of streams, before anybody else knows of the renderer. Decoding works on an image that nobody else
/// sees; imageMutex() is held only where the current image is exchanged, dropped or painted.
class XRVJP2kRenderer : public PLK::CView
{
public:
    /// \a owner is asked to redraw itself when pixels arrive. It must outlive the renderer.
    explicit XRVJP2kRenderer(XRVJP2kLayer *owner);
    ~XRVJP2kRenderer() override;

    /// Opens a file name or stream address and applies the default dynamic range for its cell type.
    PLK::CError openFile(const QString &path, bool progressive);
    /// The same with a clip, in per cent, for cells that are not of 8 bits. Any thread that has the renderer to itself.
    PLK::CError openFile(const QString &path, bool progressive, int defaultClip);
    /// That clip as the settings have it. GUI thread.
    static int defaultTransformClip();

    /// Abandons a decode in progress at its next line. Returns once no image is being exchanged or painted.
    void cancelRead();
    /// Forgets the picture: nothing is painted until the next one is decoded.
    void clearImage();
    /// Decodes the view that is set, \a width by \a height pixels for the world rectangle from (x1, y1) top left to
    /// (x2, y2) bottom right, and makes it the current image when it is complete. A read given up by cancelRead() is a
    /// success that changes nothing.
    PLKReadStatus readView(int width, int height, double x1, double y1, double x2, double y2);
    /// Draws the current image where it lies in \a deviceRect, which shows \a worldRect. Blocking views are decoded
    /// here first. GUI thread.
    void paint(QPainter &painter, const QRectF &worldRect, const QRect &deviceRect);

    /// Painter opacity, 0 to 1.
    double getTransparency() const { return transparency; }
    void setTransparency(double value);
    /// Slope of the tone table, -2 to 2; 1 is neutral.
    double getContrast() const { return contrast; }
    void setContrast(double value);
    /// Offset of the tone table, -2 to 2; 1 is neutral.
    double getBrightness() const { return brightness; }
    void setBrightness(double value);
    /// Direction of the sun in degrees, 0 to 360.
    double getAzumith() const { return azimuth; }
    void setAzumith(double value);
    /// Height of the sun in degrees, 0 to 90.
    double getElevation() const { return elevation; }
    void setElevation(double value);
    /// Draw the hill-shade veil instead of the picture.
    bool getHillShade() const { return hillShade; }
    void setHillShade(bool on) { hillShade = on; }
    void setPixmapSmoothing(bool on) { pixmapSmoothing = on; }
    bool getReadRGBA() const { return readRGBA; }
    /// Read packed pixels instead of one line per band. Takes effect with the next read.
    void setReadRGBA(bool on) { readRGBA = on; }
    /// Dynamic-range clip last applied, in per cent.
    int getTransformClip() const { return clipPercent; }
    /// Kept as an 8-bit quantity.
    void setTransformClip(int percent) { calculateMinMaxTransforms(static_cast<std::uint8_t>(percent)); }
    /// Quality layers decoded; -1 while that is unknown.
    int getJp2QualityLayers() const { return qualityLayers; }
    /// Ignored outside 1 to getMaxJp2QualityLayers(). Takes effect with the next SetView().
    void setJp2QualityLayers(int layers);
    int getMaxJp2QualityLayers() const { return MetadataJp2().Layers(); }

    bool getHasOpacityBand() const { return hasOpacityBand; }
    /// Index of the last band described as "allopacity" in any case; -1 without one.
    int getOpacityBandNumber() const;

    /// Null where there is none; the caller frees it with PLKFreeRPCData().
    PLKRPCData *getRPCData() const;
    /// Null where there is none; the caller frees it with PLKFreeStatistics().
    PLKFileStatistics *getClientStatistics();

    /// Guards the current image. The layer holds it while it issues a view.
    std::recursive_mutex &getImageMutex() { return imageMutex; }

    PLKReadStatus RefreshPass(PLKSetViewInfo *info) override;

private:
    Q_DISABLE_COPY(XRVJP2kRenderer)

    void applyDefaultTransform(int defaultClip);
    void calculateMinMaxTransforms(std::uint8_t percent);
    void applyMinMaxTransforms();
    std::unique_ptr<GeoImage> makeImage(int width, int height, double x1, double y1, double x2, double y2) const;
    PLKReadStatus readPackedLines(GeoImage &image);
    PLKReadStatus readBandLines(GeoImage &image);
    PLKReadStatus finishRead(PLKReadStatus status, std::unique_ptr<GeoImage> image);
    void prepareLineBuffers(int width);
    void composeLine(QRgb *line, int width) const;
    void readBlockingView();
    std::unique_ptr<GeoImage> toneMappedImage() const;
    std::unique_ptr<GeoImage> hillShadeOverlay() const;

    /// Guards currentImage. Not a QRecursiveMutex: thread checkers see through the standard one.
    std::recursive_mutex imageMutex;
    std::unique_ptr<GeoImage> currentImage;
    Map::Layer *ownerLayer;
    double transparency = 1.0;
    double contrast = 1.0;
    double brightness = 1.0;
    double azimuth = 45.0;
    double elevation = 45.0;
    std::atomic<bool> cancelRequested{false};
    bool hasOpacityBand = false;
    bool hillShade = false;
    bool pixmapSmoothing = false;
    std::atomic<bool> readRGBA{true};
    std::atomic<std::uint8_t> percentComplete{0};
    std::array<std::vector<std::uint8_t>, 4> lineBuffers; // red, green, blue and alpha of one line
    int lineBufferWidth = 0;
    std::uint8_t clipPercent = 100;
    int qualityLayers = -1;
    std::atomic<std::uint32_t> blocksAvailable{0};
    std::atomic<std::uint32_t> blocksInView{0};
};

} // namespace Korvane
