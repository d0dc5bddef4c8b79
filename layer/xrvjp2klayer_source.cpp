// Opening data sources.

#include "sourcetexts.h"
#include "urlfile.h"
#include "xrvjp2klayer.h"
#include "xrvjp2krenderer.h"

#include <QDGui/application.h>
#include <QDGui/longtask.h>
#include <QDGui/stringutil.h>

#include <QDateTime>
#include <QFileInfo>
#include <QPointer>

#include <utility>

namespace Korvane {

namespace {

/// Of a stream that comes as a whole; no other knows how far it is.
Gui::LongTask::Progress progressOf(const PLK::COpenControl &control)
{
    const auto sizeText = [](quint64 bytes) { return Util::String::formatFileSize(bytes, "%.1f"); };
    Gui::LongTask::Progress progress{control.GetBytesReceived(), control.GetBytesExpected(), QString()};
    if (progress.total > 0)
        progress.text = XRVJP2kLayer::tr("%1 of %2").arg(sizeText(progress.done), sizeText(progress.total));
    else if (progress.done > 0)
        progress.text = sizeText(progress.done);
    return progress;
}

} // namespace

struct XRVJP2kLayer::Opened
{
    PLK::CError error, backingError;
    std::unique_ptr<XRVJP2kRenderer> renderer, backingRenderer;
};

QString XRVJP2kLayer::viewName() const
{
    return renderer ? widenedName(renderer->GetFileName()) : QString();
}

QString XRVJP2kLayer::getDataSource() const
{
    const QString name = viewName();
    return name.left(name.indexOf(QLatin1Char('|')));
}

bool XRVJP2kLayer::setDataSource(QString source)
{
    const bool switchesMode = std::exchange(isSwitchingMode, false);
    setOpeningCancelled(false);
    histogramCache.clear();
    if (!resolveSource(&source))
        return false;
    if (opening) { // events are handled while a stream is opened: the last wish counts
        opening->Cancel();
        opening.reset();
    }
    const unsigned thisOpening = ++openings;

    std::unique_ptr<CarriedSettings> carried;
    if (renderer)
        carried = std::make_unique<CarriedSettings>(currentSettings());
    // While a stream is opened events are handled, and whoever looks at the layer then finds it as it was. So does who
    // only asked for another mode, if it cannot be had.
    if (!isStreamAddress(source) && !switchesMode)
        closeRenderers();

    const QPointer<XRVJP2kLayer> self(this); // it may be gone after an opening
    Opened opened = openRenderers(source, carried.get());
    if (!self)
        return false;
    if (thisOpening != openings) { // the layer shows what was wished for later
        setOpeningCancelled(true);
        return false;
    }
    const bool isOpen = takeOver(source, std::move(opened), std::move(carried), switchesMode);
    applyChangesOfOpening();
    return isOpen;
}

/// What was opened takes the place of what was shown before. A cancelled opening leaves everything as it was, and so
/// does one of the same source in another mode. Without a backing renderer that should be there, the main one is open
/// and all else as it was.
bool XRVJP2kLayer::takeOver(const QString &source, Opened opened, std::unique_ptr<CarriedSettings> carried,
                            bool switchesMode)
{
    const auto isCancelled = [](const PLK::CError &error) { return error.GetErrorNumber() == PLK_ERR_CANCELLED; };
    const bool cancelled = isCancelled(opened.error) || isCancelled(opened.backingError);
    if (renderer && (cancelled || (switchesMode && opened.error))) {
        lastError = tr((opened.error ? opened.error : opened.backingError).GetErrorMessage());
        return false;
    }
    if (renderer)
        *carried = currentSettings(); // they may have been changed meanwhile
    if (carried)
        pixmapSmoothing = carried->resampleType == Bilinear;
    closeRenderers();
    if (opened.error || cancelled)
        return failOpening(opened.error ? opened.error : opened.backingError);
    renderer = std::move(opened.renderer);
    if (opened.backingError)
        return false;
    backingRenderer = std::move(opened.backingRenderer);
    if (carried)
        restoreSettings(*carried);
    else
        applyFirstSettings();
    if (viewSet)
        requestLastViewAfterOpening();
    describeSource(source);
    valid = true;
    lastError.clear();
    return true;
}

/// What was asked for while a stream was opened, and had to wait.
void XRVJP2kLayer::applyChangesOfOpening()
{
    const ChangesOfOpening changes = std::exchange(afterOpening, {});
    if (changes.view)
        setView(changes.view->width, changes.view->height, changes.view->x1, changes.view->y1, changes.view->x2,
                changes.view->y2);
    const QPointer<XRVJP2kLayer> self(this);
    if (changes.progressive)
        setProgressive(*changes.progressive);
    if (self && changes.backingStore && *changes.backingStore != backingStore)
        setBackingStore(*changes.backingStore);
}

/// Replaces a ".url" file by the address in it. False, with the last error set, for sources that are refused unopened.
bool XRVJP2kLayer::resolveSource(QString *source)
{
    if (source->toLower().endsWith(QLatin1String(".url"))) {
        const UrlFile urlFile = readUrlFile(*source);
        if (urlFile.status == UrlFile::Status::CannotOpen) {
            lastError = tr("Could not open URL file.");
            return false;
        }
        if (urlFile.status == UrlFile::Status::BadProtocol) {
            lastError = tr("URL file contains non supported protocol type.");
            return false;
        }
        // A file without an address is left for the SDK to refuse, and so is a "jpip" address from a file.
        if (!urlFile.address.isEmpty())
            *source = urlFile.address;
    } else if (source->toLower().startsWith(QLatin1String("jpip"))) {
        lastError = tr("JPIP protocol not supported.");
        Application::logMessage(lastError, Application::LogDebug, QDateTime::currentDateTime());
        return false;
    }
    return true;
}

void XRVJP2kLayer::closeRenderers()
{
    closeRenderer(renderer);
    if (hasBackingRenderer())
        closeRenderer(backingRenderer);
}

void XRVJP2kLayer::closeRenderer(std::unique_ptr<XRVJP2kRenderer> &target)
{
    if (!target)
        return;
    target->cancelRead();
    target->Close(getFreeCache());
    target.reset();
}

bool XRVJP2kLayer::failOpening(const PLK::CError &error)
{
    bandList.clear();
    valid = false;
    lastError = tr(error.GetErrorMessage());
    return false;
}

/// Returns with the renderer opened, or not. Within it a stream may be cancelled and this layer deleted.
PLK::CError XRVJP2kLayer::openRenderer(XRVJP2kRenderer &target, const QString &source, bool progressively,
                                       const CarriedSettings *carried)
{
    // Read here: the settings store belongs to this thread.
    const int defaultClip = XRVJP2kRenderer::defaultTransformClip();
    if (!isStreamAddress(source))
        return target.openFile(source, progressively, defaultClip);

    const QPointer<XRVJP2kLayer> self(this);
    PLK::COpenControl control;
    target.SetOpenControl(control);
    // Two handles of one control: the layer cancels through its own when it is deleted within run(), and the one that
    // the opening uses outlives it.
    opening = std::make_unique<PLK::COpenControl>(control);
    PLK::CError error;
    Gui::LongTask task;
    task.title = tr("Open Stream");
    task.text = tr("Opening %1 from %2...").arg(streamFileName(source), streamHost(source));
    task.work = [&] {
        error = target.openFile(source, progressively, defaultClip);
        // What the stretch of the cells takes from the server is waited for here too.
        if (!error && carried)
            target.setTransformClip(carried->transformClip);
    };
    task.cancel = [&control] { control.Cancel(); };
    task.progress = [&control] { return progressOf(control); };
    const bool isCancelled = task.run() == Gui::LongTask::Outcome::Cancelled;
    if (isCancelled)
        error = {PLK_ERR_CANCELLED, QT_TR_NOOP("The opening was cancelled.")};
    if (self) {
        opening.reset();
        setOpeningCancelled(isCancelled);
    }
    return error;
}

/// The layer may be gone afterwards.
XRVJP2kLayer::Opened XRVJP2kLayer::openRenderers(const QString &source, const CarriedSettings *carried)
{
    const QPointer<XRVJP2kLayer> self(this);
    Opened opened;
    opened.renderer = std::make_unique<XRVJP2kRenderer>(this);
    opened.error = openRenderer(*opened.renderer, source, progressive, carried);
    if (!self || opened.error || !backingStore)
        return opened;
    opened.backingRenderer = std::make_unique<XRVJP2kRenderer>(this);
    opened.backingError = openRenderer(*opened.backingRenderer, source, false, carried);
    return opened;
}

XRVJP2kLayer::CarriedSettings XRVJP2kLayer::currentSettings() const
{
    return {getTransformClip(), getTransparency(), getBrightness(), getContrast(), getBandList(), getResampleType()};
}

void XRVJP2kLayer::applySettings(XRVJP2kRenderer &target, const CarriedSettings &settings) const
{
    target.setTransformClip(settings.transformClip);
    target.setTransparency(settings.transparency);
    target.setBrightness(settings.brightness);
    target.setContrast(settings.contrast);
    target.ParametersDecompress().SetResampleMethod(static_cast<PLKResampleMethod>(settings.resampleType));
}

void XRVJP2kLayer::restoreSettings(const CarriedSettings &settings)
{
    applySettings(*renderer, settings);
    bandList = settings.bandList;
    setPixmapSmoothing(settings.resampleType == Bilinear);
    if (hasBackingRenderer())
        applySettings(*backingRenderer, settings);
}

void XRVJP2kLayer::applyFirstSettings()
{
    // The backing renderer keeps the SDK's own resample method.
    renderer->ParametersDecompress().SetResampleMethod(static_cast<PLKResampleMethod>(defaultResampleType));
    renderer->setTransformClip(renderer->getTransformClip());
    bandList = getDefaultBandList();
    if (hasBackingRenderer())
        backingRenderer->setTransformClip(renderer->getTransformClip());
}

void XRVJP2kLayer::requestLastViewAfterOpening()
{
    // Here, unlike in setView(), the flag tells that the view failed; what depends on it is built around that.
    viewSet = bool(requestView(*renderer, lastViewWidth, lastViewHeight));
    if (viewSet && hasBackingRenderer())
        requestView(*backingRenderer, lastViewWidth, lastViewHeight);
}

void XRVJP2kLayer::describeSource(const QString &source)
{
    const QString fileName = localFileName(source);
    setDescription(sourceDescription(fileName));
    if (const PLKFileInfo *info = renderer->GetFileInfo())
        sizeGigaPixel = gigaPixelText(info->nSizeX, info->nSizeY);
    if (isStreamAddress(source))
        sizeOnDisk = tr("Unknown");
    else
        sizeOnDisk = Util::String::formatFileSize(static_cast<quint64>(QFileInfo(fileName).size()), "%2.2f");
    setEpsgCode(renderer->GetEPSGCode());
}

QVector<int> XRVJP2kLayer::getDefaultBandList() const
{
    std::vector<std::uint32_t> bands;
    if (!renderer->GetDefaultRGBABandList(&bands)) {
        QVector<int> list;
        for (const std::uint32_t band : bands)
            list.append(static_cast<int>(band));
        return list;
    }
    if (renderer->getHasOpacityBand())
        return {0, 0, 0, renderer->getOpacityBandNumber()};
    return {0, 0, 0};
}

} // namespace Korvane
