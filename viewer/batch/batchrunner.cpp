#include "batchrunner.h"

#include "appearance/translations.h"
#include "layers/layerdescriber.h"
#include "plugins/pagetexts.h"
#include "project/project.h"
#include "project/projectreader.h"
#include "sources/sources.h"
#include "views/maparea.h"
#include "views/pictures.h"
#include "window/mainwindow.h"

#include <QDGui/ilayercondition.h>
#include <QDGui/mapview.h>
#include <QDGui/pluginregistry.h>

#include <QApplication>
#include <QEventLoop>
#include <QJsonDocument>
#include <QTextStream>
#include <QTimer>

namespace Viewer {

using Korvane::Map::Layer;
using Korvane::Map::MapView;

namespace {

/// The status bar's fields follow the view by timers a little later.
constexpr int kSettleMs = 150;

constexpr int kFailed = 1, kDamaged = 3; // exit status; 2 is a wrong command line

} // namespace

BatchRunner::BatchRunner(const CommandLine &commandLine, const Korvane::PluginRegistry &registry, QTextStream &out,
                         QTextStream &err)
    : commandLine(commandLine)
    , registry(registry)
    , opener(registry)
    , out(out)
    , err(err)
{
}

BatchRunner::~BatchRunner() = default;

int BatchRunner::run()
{
    for (const QString &source : commandLine.sources)
        takeSource(source);
    // Without anything to show, what went wrong has been told already.
    if (wantsPictures() && (!opened.empty() || commandLine.sources.isEmpty()))
        writePictures();
    out.flush();
    if (out.status() != QTextStream::Ok)
        fail(QStringLiteral("What was asked for cannot be written."));
    err.flush();
    return hasFailed ? kFailed : isDamaged ? kDamaged : 0;
}

bool BatchRunner::wantsPictures() const
{
    return !commandLine.screenshotFile.isEmpty() || !commandLine.windowFile.isEmpty();
}

void BatchRunner::makeView()
{
    if (!commandLine.windowFile.isEmpty()) {
        translations = std::make_unique<Translations>();
        window = std::make_unique<MainWindow>(registry);
        window->restoreLayout();
        view = window->mapArea()->createView();
    } else {
        ownView = std::make_unique<MapView>();
        view = ownView.get();
    }
}

void BatchRunner::showLayers()
{
    for (Opened &entry : opened) {
        if (view->addLayer(entry.layer.get(), -1) >= 0)
            (void)entry.layer.release(); // the view owns it
        else
            fail(QStringLiteral("%1 cannot be shown.").arg(Sources::shown(entry.source)));
    }
    opened.clear();
}

void BatchRunner::takeSource(const QString &source)
{
    if (isProjectFile(source)) {
        takeProject(source);
        return;
    }
    LayerOpener::Result result = opener.open(source);
    if (result.layer) {
        takeLayer(source, std::move(result.layer));
    } else {
        failures.take(); // the layer has told what the log says
        describeFailure(source, result.error);
    }
}

void BatchRunner::takeProject(const QString &fileName)
{
    QString error;
    Project project = ProjectReader(registry).read(Sources::normalized(fileName), &error);
    failures.take();
    for (const QString &warning : qAsConst(project.warnings))
        describeFailure(fileName, warning);
    if (!error.isEmpty() || project.views.empty()) {
        describeFailure(fileName,
                        error.isEmpty() ? QStringLiteral("The project %1 has no views.").arg(fileName) : error);
        return;
    }
    ProjectView &current = project.views[static_cast<size_t>(project.currentView)];
    if (firstBounds.isNull())
        firstBounds = current.worldRect;
    for (std::unique_ptr<Layer> &layer : current.layers) {
        const QString source = Sources::ofLayer(*layer);
        takeLayer(source, std::move(layer));
    }
}

void BatchRunner::takeLayer(const QString &source, std::unique_ptr<Layer> layer)
{
    if (commandLine.describe)
        describe(source, *layer);
    if (tellFailures() || !wantsPictures())
        return;
    if (firstBounds.isNull())
        firstBounds = layer->getBounds();
    opened.push_back({source, std::move(layer)});
}

void BatchRunner::describe(const QString &source, Layer &layer)
{
    QJsonObject object = LayerDescriber::describe(layer);
    object[QStringLiteral("source")] = Sources::withoutCredentials(source);
    object[QStringLiteral("pages")] = PageTexts::read(registry, layer);
    out << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) << '\n';
}

void BatchRunner::describeFailure(const QString &source, const QString &error)
{
    fail(error);
    if (!commandLine.describe)
        return;
    const QJsonObject object{{QStringLiteral("source"), Sources::withoutCredentials(source)},
                             {QStringLiteral("error"), error}};
    out << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) << '\n';
}

/// Whether there was anything to tell.
bool BatchRunner::tellFailures()
{
    const QStringList sentences = failures.take();
    for (const QString &sentence : sentences)
        fail(sentence);
    return !sentences.isEmpty();
}

void BatchRunner::writePictures()
{
    makeView();
    showLayers();
    if (view->getLayerCount() == 0 && !commandLine.sources.isEmpty())
        return;
    const QImage wholeWindow = window ? windowPicture() : QImage();
    translations.reset();
    if (!wholeWindow.isNull())
        write(wholeWindow, commandLine.windowFile);
    if (!commandLine.screenshotFile.isEmpty())
        writeScreenshot();
    tellDamage();
}

/// What the pictures show in spite of it.
void BatchRunner::tellDamage()
{
    const QList<Layer *> layers = view->getLayers();
    for (const Layer *layer : layers) {
        const auto *source = dynamic_cast<const Korvane::Map::ILayerCondition *>(layer);
        if (!source || source->getCondition().fault != Korvane::Map::ILayerCondition::Fault::Damaged)
            continue;
        isDamaged = true;
        tell(QStringLiteral("%1 is damaged and shown as well as can be: %2")
                 .arg(Sources::shown(Sources::ofLayer(*layer)), source->getCondition().sentence));
    }
}

/// For a picture of that many pixels.
QRectF BatchRunner::wantedRect(const QSize &pixels) const
{
    return commandLine.worldRect.isNull() ? MapView::visiblePart(firstBounds, pixels) : commandLine.worldRect;
}

void BatchRunner::writeScreenshot()
{
    const QRectF wanted = wantedRect(commandLine.pictureSize);
    bool isComplete = false;
    const QImage image = view->renderToImage(commandLine.pictureSize, wanted, timeoutMs, &isComplete);
    if (image.isNull()) {
        fail(QStringLiteral("There is not enough memory for a picture of %1x%2 pixels.")
                 .arg(commandLine.pictureSize.width())
                 .arg(commandLine.pictureSize.height()));
    } else if (!isComplete) {
        fail(QStringLiteral("The picture was not complete after %1 seconds and is not written.").arg(timeoutMs / 1000));
    } else if (!tellFailures()) {
        write(image, commandLine.screenshotFile);
    }
}

void BatchRunner::resizeWindow()
{
    window->show();
    QApplication::processEvents();
    const double ratio = window->devicePixelRatioF();
    const QSize pixels = commandLine.pictureSize;
    // A size that was asked for means pixels of the picture; the default one is a window of ordinary proportions.
    window->resize(commandLine.hasPictureSize ? (QSizeF(pixels) / ratio).toSize() : pixels);
    QApplication::processEvents();
}

void BatchRunner::settle()
{
    QEventLoop loop;
    QTimer::singleShot(kSettleMs, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

/// A null picture when there is none, after telling why.
QImage BatchRunner::windowPicture()
{
    resizeWindow();
    const QSize pixels = (QSizeF(window->size()) * window->devicePixelRatioF()).toSize();
    if (commandLine.hasPictureSize && pixels != commandLine.pictureSize) {
        fail(QStringLiteral("The window cannot be made %1x%2 pixels large; it takes at least %3x%4.")
                 .arg(commandLine.pictureSize.width())
                 .arg(commandLine.pictureSize.height())
                 .arg(pixels.width())
                 .arg(pixels.height()));
        return QImage();
    }
    const QRectF wanted = wantedRect((QSizeF(view->size()) * view->devicePixelRatioF()).toSize());
    if (!wanted.isNull())
        view->setVisibleWorldRect(wanted);
    if (!view->waitUntilComplete(timeoutMs)) {
        fail(QStringLiteral("The window was not complete after %1 seconds and its picture is not written.")
                 .arg(timeoutMs / 1000));
        return QImage();
    }
    settle();
    return tellFailures() ? QImage() : window->grab().toImage();
}

void BatchRunner::write(const QImage &image, const QString &fileName)
{
    const QString error = Pictures::write(image, fileName);
    if (!error.isEmpty())
        fail(error);
}

void BatchRunner::fail(const QString &sentence)
{
    hasFailed = true;
    tell(sentence);
}

void BatchRunner::tell(const QString &sentence)
{
    err << QCoreApplication::applicationName() << ": " << sentence.simplified() << '\n';
    err.flush();
}

} // namespace Viewer
