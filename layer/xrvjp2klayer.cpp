#include "xrvjp2klayer.h"

#include "settings/pluginsettings.h"
#include "xrvjp2krenderer.h"

#include <QDateTime>
#include <QPointer>

#include <limits>
#include <utility>

namespace Korvane {

namespace {

constexpr double kNoCoordinate = std::numeric_limits<double>::quiet_NaN();

} // namespace

XRVJP2kLayer::XRVJP2kLayer(Map::IRendererClient *client)
    : XRVJP2kLayer(client, &QDateTime::currentMSecsSinceEpoch)
{
}

XRVJP2kLayer::XRVJP2kLayer(Map::IRendererClient *client, Clock clock)
    : RasterLayer(client)
    , lastViewX1(kNoCoordinate)
    , lastViewY1(kNoCoordinate)
    , lastViewX2(kNoCoordinate)
    , lastViewY2(kNoCoordinate)
    , sizeGigaPixel(QStringLiteral("Unknown"))
    , sizeOnDisk(QStringLiteral("Unknown"))
    , clock(std::move(clock))
    , lastReconnectTime(this->clock())
{
    // Under the name that the property table has for it; without it the property can be neither read nor written.
    qRegisterMetaType<ResampleType>("XRVJP2kLayer::ResampleType");
    readSettings();
}

XRVJP2kLayer::~XRVJP2kLayer()
{
    if (opening)
        opening->Cancel();
    closeRenderer(renderer);
    closeRenderer(backingRenderer);
}

void XRVJP2kLayer::readSettings()
{
    using namespace PluginSettings;
    pixmapSmoothing = !read(kNearestNeighbour);
    adaptiveRoam = read(kAdaptiveRendering);
    progressive = read(kOpenProgressive);
    defaultResampleType = static_cast<ResampleType>(read(kResampleType));
    backingStore = read(kUseBackingstore);
    drawOutline = read(kDrawOutline);
    outlineColor = read(kOutlineColor);
    outlinePen = QPen(outlineColor);
}

template <typename Setting> void XRVJP2kLayer::applyToBothRenderers(Setting setting)
{
    if (renderer)
        setting(*renderer);
    if (hasBackingRenderer())
        setting(*backingRenderer);
}

void XRVJP2kLayer::refreshWithUpdate()
{
    if (renderer && lastViewWidth != 0 && lastViewHeight != 0)
        setView(lastViewWidth, lastViewHeight, lastViewX1, lastViewY1, lastViewX2, lastViewY2);
    refresh(0, 0, 0, 0);
}

void XRVJP2kLayer::setVisible(bool on)
{
    visible = on;
    if (!renderer)
        return;
    const QRectF bounds = getBounds();
    refresh(bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
}

void XRVJP2kLayer::beginUpdate(bool)
{
    updating = true;
}

void XRVJP2kLayer::endUpdate()
{
    updating = false;
}

bool XRVJP2kLayer::readXML(QDomNode &node, QDir &projectFolder, QString *error)
{
    using namespace PluginSettings;
    const QColor colorOfNewLayers = read(kOutlineColor);
    const bool isOpen = Layer::readXML(node, projectFolder, error);
    // What a project says of its layers is no wish for those to come.
    if (read(kOutlineColor) != colorOfNewLayers)
        write(kOutlineColor, colorOfNewLayers);
    return isOpen;
}

bool XRVJP2kLayer::writeXML(QDomNode &node, QDomDocument &document)
{
    return Layer::writeXML(node, document);
}

double XRVJP2kLayer::getTransparency() const
{
    return renderer ? renderer->getTransparency() : 0.0;
}

void XRVJP2kLayer::setTransparency(double transparency)
{
    applyToBothRenderers([&](XRVJP2kRenderer &target) { target.setTransparency(transparency); });
}

double XRVJP2kLayer::getContrast() const
{
    return renderer ? renderer->getContrast() : 0.0;
}

void XRVJP2kLayer::setContrast(double contrast)
{
    applyToBothRenderers([&](XRVJP2kRenderer &target) { target.setContrast(contrast); });
}

double XRVJP2kLayer::getBrightness() const
{
    return renderer ? renderer->getBrightness() : 0.0;
}

void XRVJP2kLayer::setBrightness(double brightness)
{
    applyToBothRenderers([&](XRVJP2kRenderer &target) { target.setBrightness(brightness); });
}

void XRVJP2kLayer::setBandList(QVector<int> bands)
{
    bandList = std::move(bands);
    refreshWithUpdate();
}

XRVJP2kLayer::ResampleType XRVJP2kLayer::getResampleType() const
{
    return renderer ? static_cast<ResampleType>(renderer->ParametersDecompress().GetResampleMethod())
                    : NearestNeighbour;
}

void XRVJP2kLayer::setResampleType(ResampleType type)
{
    if (!renderer || getResampleType() == type)
        return;
    applyToBothRenderers([&](XRVJP2kRenderer &target) {
        target.ParametersDecompress().SetResampleMethod(static_cast<PLKResampleMethod>(type));
    });
    if (viewSet)
        setView(lastViewWidth, lastViewHeight, lastViewX1, lastViewY1, lastViewX2, lastViewY2);
}

void XRVJP2kLayer::setPixmapSmoothing(bool on)
{
    pixmapSmoothing = on;
    if (!renderer)
        return;
    applyToBothRenderers([&](XRVJP2kRenderer &target) { target.setPixmapSmoothing(on); });
    refresh(0, 0, 0, 0);
}

/// Opens the source that is open anew; false when it stays as it was. The layer may be gone afterwards.
bool XRVJP2kLayer::switchMode(const QString &source)
{
    isSwitchingMode = true;
    return setDataSource(source);
}

void XRVJP2kLayer::setProgressive(bool on)
{
    if (opening) {
        if (renderer)
            afterOpening.progressive = on;
        return;
    }
    if (on == progressive || !renderer)
        return;
    progressive = on;
    const QPointer<XRVJP2kLayer> self(this);
    const bool isOpen = switchMode(viewName());
    if (!self)
        return;
    if (!isOpen && renderer)
        progressive = renderer->IsProgressive(); // what is still shown has kept its mode
    refreshWithUpdate();
}

void XRVJP2kLayer::setReadRGBA(bool on)
{
    readRGBA = on;
    if (renderer)
        renderer->setReadRGBA(on);
}

int XRVJP2kLayer::getTransformClip() const
{
    return renderer ? renderer->getTransformClip() : 100;
}

void XRVJP2kLayer::setTransformClip(int percent)
{
    if (!renderer)
        return;
    applyToBothRenderers([&](XRVJP2kRenderer &target) { target.setTransformClip(percent); });
    refreshWithUpdate();
}

void XRVJP2kLayer::setDrawOutline(bool on)
{
    drawOutline = on;
    refresh(0, 0, 0, 0);
}

void XRVJP2kLayer::setOutlineColor(QColor color)
{
    outlineColor = std::move(color);
    outlinePen = QPen(outlineColor);
    PluginSettings::write(PluginSettings::kOutlineColor, outlineColor);
    refresh(0, 0, 0, 0);
}

void XRVJP2kLayer::setBackingStore(bool on)
{
    if (opening) {
        afterOpening.backingStore = on;
        return;
    }
    const bool before = std::exchange(backingStore, on);
    if (!on && backingRenderer) {
        backingRenderer.reset();
    } else {
        // The main file is closed and opened again within this call and must not lose its cached data.
        const bool rememberedFreeCache = getFreeCache();
        const QPointer<XRVJP2kLayer> self(this);
        setFreeCache(false);
        const QString errorBefore = lastError;
        const bool wasOpen = bool(renderer);
        switchMode(getDataSource());
        if (!self)
            return;
        if (!wasOpen && !errorBefore.isEmpty())
            lastError = errorBefore; // why nothing is open is still the answer
        setFreeCache(rememberedFreeCache);
        if (isOpeningCancelled())
            backingStore = before;
    }
    refresh(0, 0, 0, 0);
}

bool XRVJP2kLayer::getTextureDither() const
{
    return renderer && renderer->ParametersDecompress().IsReaderDitherEnabled();
}

void XRVJP2kLayer::setTextureDither(bool on)
{
    if (!renderer)
        return;
    renderer->ParametersDecompress().SetReaderDitherEnabled(on);
    refreshWithUpdate();
}

int XRVJP2kLayer::getJp2QualityLayers() const
{
    return renderer ? renderer->getJp2QualityLayers() : -1;
}

void XRVJP2kLayer::setJp2QualityLayers(int layers)
{
    if (!renderer)
        return;
    renderer->setJp2QualityLayers(layers);
    refreshWithUpdate();
}

int XRVJP2kLayer::getMaxJp2QualityLayers() const
{
    return renderer ? renderer->getMaxJp2QualityLayers() : -1;
}

double XRVJP2kLayer::getAzumith() const
{
    return renderer ? renderer->getAzumith() : 0.0;
}

void XRVJP2kLayer::setAzumith(double degrees)
{
    if (renderer)
        renderer->setAzumith(degrees);
}

double XRVJP2kLayer::getElevation() const
{
    return renderer ? renderer->getElevation() : 0.0;
}

void XRVJP2kLayer::setElevation(double degrees)
{
    if (renderer)
        renderer->setElevation(degrees);
}

bool XRVJP2kLayer::getHillShade() const
{
    return renderer && renderer->getHillShade();
}

void XRVJP2kLayer::setHillShade(bool on)
{
    if (renderer)
        renderer->setHillShade(on);
}

} // namespace Korvane
