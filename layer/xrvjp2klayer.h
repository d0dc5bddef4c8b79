#pragma once

#include "viewclipping.h"

#include <QDGui/ilayercondition.h>
#include <QDGui/ilayerstatistics.h>
#include <QDGui/ilayervalues.h>
#include <QDGui/irasterlayerhistogram.h>
#include <QDGui/rasterlayer.h>
#include <xrv60/plktypes.h>

#include <QColor>
#include <QList>
#include <QPen>
#include <QSize>
#include <QVector>

#include <functional>
#include <memory>
#include <optional>

namespace PLK {
class CView;
class CError;
class COpenControl;
} // namespace PLK

namespace Korvane {

class XRVJP2kRenderer;

/// The raster layer of this plug-in: shows an XRV or JPEG 2000 image from a file or a stream.
///
/// Most image settings live in the renderer that holds the open file. Without one (nothing opened yet, or the last open
/// failed) their getters give fixed defaults and their setters do nothing. GUI thread only.
class Q_DECL_EXPORT XRVJP2kLayer : public Map::RasterLayer,
                                   public Map::IRasterLayerHistogram,
                                   public Map::ILayerStatistics,
                                   public Map::ILayerValues,
                                   public Map::ILayerCondition
{
    Q_OBJECT
    Q_PROPERTY(QString SizeOnDisk READ getSizeOnDisk)
    Q_PROPERTY(QString SizeGigaPixel READ getSizeGigaPixel)
    Q_PROPERTY(int XRVPVersion READ getXRVPVersion)
    Q_PROPERTY(int FileFormatVersion READ getFileFormatVersion)
    Q_PROPERTY(double Contrast READ getContrast WRITE setContrast)
    Q_PROPERTY(double Brightness READ getBrightness WRITE setBrightness)
    Q_PROPERTY(QVector<qint32> BandList READ getBandList WRITE setBandList)
    Q_PROPERTY(bool FreeCache READ getFreeCache WRITE setFreeCache)
    Q_PROPERTY(bool PixmapSmoothing READ getPixmapSmoothing WRITE setPixmapSmoothing)
    Q_PROPERTY(bool Progressive READ getProgressive WRITE setProgressive)
    Q_PROPERTY(bool AdaptiveRoam READ getAdaptiveRoam WRITE setAdaptiveRoam)
    Q_PROPERTY(bool ReadRGBA READ getReadRGBA WRITE setReadRGBA)
    Q_PROPERTY(int TransformClip READ getTransformClip WRITE setTransformClip)
    Q_PROPERTY(int OpacityBandNumber READ getOpacityBandNumber)
    Q_PROPERTY(XRVJP2kLayer::ResampleType ResampleMethod READ getResampleType WRITE setResampleType)
    Q_PROPERTY(bool DrawOutline READ getDrawOutline WRITE setDrawOutline)
    Q_PROPERTY(QColor OutlineColor READ getOutlineColor WRITE setOutlineColor)
    Q_PROPERTY(bool BackingStore READ getBackingStore WRITE setBackingStore)
    Q_PROPERTY(bool TextureDither READ getTextureDither WRITE setTextureDither)
    Q_PROPERTY(int Jp2QualityLayers READ getJp2QualityLayers WRITE setJp2QualityLayers)

public:
    /// Handed unchanged to the SDK.
    enum ResampleType : int { NearestNeighbour = 0, Bilinear = 1 };

    /// What the main header of a JPEG 2000 codestream says.
    struct Jp2FileInfo
    {
        int profile = 0; ///< 0 profile 0, 1 profile 1, 2 no restriction
        QString comments;
        QSize numberOfTiles;
        QSize tileSize;         ///< cells
        QString precinctSizesX; ///< of every resolution level, joined by ","
        QString precinctSizesY;
        QSize codeBlockSize;
        QString bitDepths; ///< of every component, joined by ","
        int resolutionLevels = 0;
        int qualityLayers = 0;
        QString progressionOrder;
        QString filter;
        bool useSOP = false;
        bool useEPH = false;
        bool hasGML = false;
    };

    /// In milliseconds since the epoch.
    using Clock = std::function<qint64()>;

    explicit XRVJP2kLayer(Map::IRendererClient *client);
    /// With \a clock in the place of the system's.
    XRVJP2kLayer(Map::IRendererClient *client, Clock clock);
    ~XRVJP2kLayer() override;

    /// The name that the SDK opened, its UTF-8 bytes widened one by one and cut at the first "|".
    QString getDataSource() const override;
    /// Opens a local file, a stream address ("xrvp://", "xrvps://"), or the address named in a ".url" file. Settings of
    /// the image shown before are carried over. What is shown stays when the source is refused without being opened.
    ///
    /// A stream that is not there at once is opened with the windows left alive, where Gui::LongTask can: events are
    /// handled within this call, the person may cancel it, which is a failure like others, and the layer may even be
    /// deleted. Meanwhile it shows what it showed before; views and modes that are asked for then are taken up when the
    /// source is open, and another source takes this one's place, which is cancelled. A cancelled opening changes
    /// nothing.
    bool setDataSource(QString source) override;
    QIcon getIcon() const override;
    bool isVisible() const override { return visible; }
    void setVisible(bool on) override;
    QString getFormat() const override;
    /// "epsg:" and the code.
    QString getCoordSysName() const override;
    void setView(int width, int height, double x1, double y1, double x2, double y2) override;
    void beginUpdate(bool zooming) override;
    void endUpdate() override;
    QRectF getBounds() const override;
    bool isValid() const override { return valid; }
    QString getLastError() const override { return lastError; }
    QString getProtocol() const override;
    signed char getPercentComplete() const override;
    bool readXML(QDomNode &node, QDir &projectFolder, QString *error) override;
    bool writeXML(QDomNode &node, QDomDocument &document) override;
    void paint(GeoPainter &painter, const QRectF *world, const QRect *device) override;

    double getCellSizeX() const override;
    double getCellSizeY() const override;
    double getTransparency() const override;
    /// Causes no redraw, as setContrast() and setBrightness(): the caller asks for it.
    void setTransparency(double transparency) override;
    int getNumberOfBands() const override;
    QVector<int> getBandList() const override { return bandList; }
    void setBandList(QVector<int> bands) override;
    QSize getSize() const override;
    QString getCellType() const override;
    bool hasOpacity() const override;
    int getOpacityBandNumber() const override;
    double getRotation() const override;
    ColorSpace getColorSpace() const override;

    virtual double getContrast() const;
    virtual void setContrast(double contrast);
    virtual double getBrightness() const;
    virtual void setBrightness(double brightness);
    virtual ResampleType getResampleType() const;
    virtual void setResampleType(ResampleType type);
    virtual bool getFreeCache() const { return freeCache; }
    /// Whether the SDK may drop a file's cached data when the layer closes it.
    virtual void setFreeCache(bool on) { freeCache = on; }
    virtual bool getPixmapSmoothing() const { return pixmapSmoothing; }
    virtual void setPixmapSmoothing(bool on);
    virtual bool getProgressive() const { return progressive; }
    /// Opens the source again in the other mode. Without an open source the value is not even stored.
    virtual void setProgressive(bool on);
    virtual bool getAdaptiveRoam() const { return adaptiveRoam; }
    /// Blocking views are asked for at half size between beginUpdate() and endUpdate().
    virtual void setAdaptiveRoam(bool on) { adaptiveRoam = on; }
    virtual bool getReadRGBA() const { return readRGBA; }
    virtual void setReadRGBA(bool on);
    virtual QString getSizeOnDisk() const { return sizeOnDisk; }
    virtual QString getSizeGigaPixel() const { return sizeGigaPixel; }
    /// 3 for an image read through a stream, else 0.
    virtual int getXRVPVersion() const;
    virtual int getFileFormatVersion() const;
    /// Share of the cells, in per cent, that the stretch to 8 bits keeps; an 8-bit quantity.
    virtual void setTransformClip(int percent);
    virtual int getTransformClip() const;
    virtual bool getDrawOutline() const { return drawOutline; }
    virtual void setDrawOutline(bool on);
    virtual QColor getOutlineColor() const { return outlineColor; }
    /// Also kept in the settings for layers to come.
    virtual void setOutlineColor(QColor color);
    virtual bool getBackingStore() const { return backingStore; }
    virtual void setBackingStore(bool on);
    virtual bool getTextureDither() const;
    virtual void setTextureDither(bool on);
    virtual int getJp2QualityLayers() const;
    virtual void setJp2QualityLayers(int layers);
    virtual int getMaxJp2QualityLayers() const;

    /// Computed at the first call and kept; \a reset empties what is kept and returns nothing. The other arguments are
    /// not used.
    QVector<Map::HistogramT<quint64>> getHistograms(bool reset, bool visibleOnly, QSize viewSize, double x1, double y1,
                                                    double x2, double y2) override;

    double getAzumith() const;
    void setAzumith(double degrees);
    double getElevation() const;
    void setElevation(double degrees);
    bool getHillShade() const;
    /// Causes no redraw.
    void setHillShade(bool on);

    StatisticsState getStatisticsState() const override;
    int getStatisticsPercent() const override;
    void countStatistics() override;
    void cancelStatistics() override;
    bool areCellsLocal() const override;

    std::unique_ptr<Map::LayerValueReader> makeValueReader() const override;
    QStringList getBandNames() const override;

    Condition getCondition() const override;
    void repair() override;

    /// The open view; null without one. Owned by the layer.
    PLK::CView *getFile() const;
    /// The view of the backing store; null without one. Owned by the layer.
    PLK::CView *getBackingFile() const;
    /// Owned by the view, and not to be changed; null without one.
    PLKFileInfo *getFileInfo() const;
    PLKFileType getFileType() const;
    /// To be freed with PLKFreeStatistics(); null where there are none. Of large images an estimate until all cells are
    /// counted: getStatisticsState() tells.
    PLKFileStatistics *getStatistics() const;
    /// To be freed with PLKFreeRPCData(); null where there are none.
    PLKRPCData *getRPCInfo() const;
    /// Fills \a info; false, leaving it alone, for anything but an open JPEG 2000 file.
    bool getJp2FileInfo(Jp2FileInfo &info) const;
    QList<QString> getBandDescriptions() const;

private:
    Q_DISABLE_COPY(XRVJP2kLayer)

    /// What a source that is opened again takes over from the one before.
    struct CarriedSettings
    {
        int transformClip;
        double transparency;
        double brightness;
        double contrast;
        QVector<int> bandList;
        ResampleType resampleType;
    };

    /// What was made of a source.
    struct Opened;

    /// What is asked for while a stream is opened waits until it is: the last of each kind.
    struct ChangesOfOpening
    {
        std::optional<ClippedView> view; ///< as the map view asked for it
        std::optional<bool> progressive;
        std::optional<bool> backingStore;
    };

    void readSettings();
    bool hasBackingRenderer() const { return backingStore && backingRenderer; }
    template <typename Setting> void applyToBothRenderers(Setting setting);
    void refreshWithUpdate();

    bool resolveSource(QString *source);
    CarriedSettings currentSettings() const;
    void applySettings(XRVJP2kRenderer &target, const CarriedSettings &settings) const;
    void closeRenderers();
    void closeRenderer(std::unique_ptr<XRVJP2kRenderer> &target);
    PLK::CError openRenderer(XRVJP2kRenderer &target, const QString &source, bool progressively,
                             const CarriedSettings *carried);
    Opened openRenderers(const QString &source, const CarriedSettings *carried);
    bool takeOver(const QString &source, Opened opened, std::unique_ptr<CarriedSettings> carried, bool switchesMode);
    void applyChangesOfOpening();
    bool switchMode(const QString &source);
    void restoreSettings(const CarriedSettings &settings);
    void applyFirstSettings();
    void requestLastViewAfterOpening();
    void describeSource(const QString &source);
    bool failOpening(const PLK::CError &error);
    QVector<int> getDefaultBandList() const;
    QString viewName() const;

    bool calculateClippedCoords(int width, int height, double x1, double y1, double x2, double y2);
    PLK::CError requestView(XRVJP2kRenderer &target, int width, int height) const;
    void clearImages();
    void reconnectWhenDue();
    bool isRoaming() const;
    bool isBackingShown() const;
    QVector<Map::HistogramT<quint64>> makeHistograms(const PLKFileStatistics &statistics) const;

    // The last view after clipping to the image and snapping to whole cells: world rectangle and size in pixels.
    double lastViewX1;
    double lastViewY1;
    double lastViewX2;
    double lastViewY2;
    int lastViewWidth = 0;
    int lastViewHeight = 0;
    bool updating = false;
    bool freeCache = true;
    bool visible = true;
    bool pixmapSmoothing = false;
    bool valid = false;
    bool progressive = true;
    bool adaptiveRoam = false;
    bool readRGBA = true;
    bool viewSet = false;
    bool drawOutline = false;
    bool backingStore = false;
    ResampleType defaultResampleType = NearestNeighbour;
    QVector<int> bandList;
    std::unique_ptr<XRVJP2kRenderer> renderer;
    std::unique_ptr<XRVJP2kRenderer> backingRenderer;
    std::unique_ptr<PLK::COpenControl> opening; // of the stream that is being opened
    ChangesOfOpening afterOpening;
    unsigned openings = 0;        // begun so far, to notice one that began within another
    bool isSwitchingMode = false; // the next setDataSource() is for the source that is open, in another mode
    QString lastError;
    QString sizeGigaPixel;
    QString sizeOnDisk;
    QColor outlineColor;
    QPen outlinePen;
    Clock clock;
    qint64 lastReconnectTime; // milliseconds since the epoch
    QVector<Map::HistogramT<quint64>> histogramCache;
};

} // namespace Korvane

Q_DECLARE_METATYPE(Korvane::XRVJP2kLayer::ResampleType)
