#include "xrvjp2kpreferences.h"

#include "logging/logsinks.h"
#include "settings/pluginsettings.h"
#include "ui_xrvjp2kpreferences.h"

#include <QDGui/application.h>
#include <QDGui/stringutil.h>
#include <QDGui/system.h>

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QSettings>
#include <QUrl>

#include <algorithm>
#include <utility>

using Korvane::Application;
using Korvane::Util::String::formatFileSize;

namespace {

constexpr quint64 kMaxMemoryMb = 2048;
constexpr int kMinMemoryPercent = 10;
constexpr quint64 kMaxDiskMb = 500;
constexpr int kMinDiskPercent = 20;

// What init() writes and what a moved slider writes differ by the blanks.
constexpr const char *kSizeFormat = "%2.2f";
constexpr const char *kIndentedSizeFormat = "  %2.2f";

QString megabytesText(quint64 megabytes, const char *format)
{
    return formatFileSize(megabytes << 20, format);
}

/// Kept within what a slider can take: a settings file may hold any size, and a machine may not tell its memory.
int percentOf(quint64 size, quint64 whole)
{
    const double percent = static_cast<double>(size) / static_cast<double>(std::max<quint64>(whole, 1)) * 100.0;
    return static_cast<int>(std::min(percent, 100.0));
}

/// Steps by key, wheel or a click beside the handle move it as well.
void countStepsAsMoves(QSlider *slider)
{
    QObject::connect(slider, &QSlider::actionTriggered, slider, [slider](int action) {
        // The wheel's steps are moves too, but nobody holds the handle then.
        const bool isDrag = action == QSlider::SliderMove && slider->isSliderDown();
        if (action != QSlider::SliderNoAction && !isDrag)
            Q_EMIT slider->sliderMoved(slider->sliderPosition());
    });
}

} // namespace

XRVJP2kPreferences::XRVJP2kPreferences(QWidget *parent)
    : XRVJP2kPreferences({Korvane::System::getTotalRAM(), [](const QString &name) { return QFile::remove(name); }},
                         parent)
{
}

XRVJP2kPreferences::XRVJP2kPreferences(Surroundings found, QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2kPreferencesClass>())
    , surroundings(std::move(found))
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("XRV JP2"));
    totalMemory = static_cast<qint64>(surroundings.memory);
    maximumMemory = std::min(static_cast<quint64>(totalMemory >> 2), kMaxMemoryMb);
    recommendedMemory = std::min(maximumMemory, PluginSettings::kCacheMaxMemMb.onPage);
    readSettings();
    connectWidgets();
    init();
}

XRVJP2kPreferences::~XRVJP2kPreferences()
{
    Application::instance()->settings()->sync();
}

void XRVJP2kPreferences::readSettings()
{
    using namespace PluginSettings;
    streamCacheEnabled = readForPage(kLocalXrvpCache);
    memoryCacheSize = readForPage(kCacheMaxMemMb);
    cacheFolder = readForPage(kXrvpCacheDir);
    diskCacheSize = readForPage(kDiskCacheMaxSizeMb);
    textureDither = readForPage(kTextureDither);
    resilientDecoding = readForPage(kResilientDecoding);
    optimizeNonProgressive = readForPage(kOptimizeNonProgressive);
    nearestNeighbour = readForPage(kNearestNeighbour);
    adaptiveRendering = readForPage(kAdaptiveRendering);
    clipPercent = readForPage(kDefaultClipTransform);
    openProgressive = readForPage(kOpenProgressive);
    useWinHttp = readForPage(kUseWinHttp);
    userAgent = readForPage(kXrvpUserAgent);
    logSdkEvents = readForPage(kLogXrvEvents);
}

void XRVJP2kPreferences::connectWidgets()
{
    using Page = XRVJP2kPreferences;
    // sliderMoved: a size changes only when a person moves a handle, not when a widget is filled.
    connect(ui->xrvpMemCacheDirSizeSlider, &QSlider::sliderMoved, this, &Page::onCacheDirSliderMove);
    connect(ui->xrvpDiskCacheSizeSlider, &QSlider::sliderMoved, this, &Page::onDiskCacheSliderMove);
    countStepsAsMoves(ui->xrvpMemCacheDirSizeSlider);
    countStepsAsMoves(ui->xrvpDiskCacheSizeSlider);
    connect(ui->diskCacheGroupBox, &QGroupBox::clicked, this, &Page::onEnableXRVPCache);
    connect(ui->diskCacheButton, &QToolButton::clicked, this, &Page::onChooseXRVPCacheDir);
    connect(ui->clipPercent, QOverload<int>::of(&QSpinBox::valueChanged), this, &Page::onClipPercent);
    connect(ui->useBilinearSampling, &QCheckBox::clicked, this, &Page::onUseBilinear);
    connect(ui->useResilientDecoding, &QCheckBox::clicked, this, &Page::onUseResilientDecoding);
    connect(ui->useAdaptiveRendering, &QCheckBox::clicked, this, &Page::onUseAdaptiveRendering);
    connect(ui->useXrvTexture, &QCheckBox::clicked, this, &Page::onUseTexturing);
    connect(ui->useWinHTTPInXRVP, &QCheckBox::clicked, this, &Page::onUseWinHTTPInXRVP);
    connect(ui->useOpenProgressive, &QCheckBox::clicked, this, &Page::onAlwaysOpenProgressive);
    connect(ui->clearDiskCacheButton, &QPushButton::clicked, this, &Page::onClearDiskCache);
    connect(ui->viewFilesButton, &QPushButton::clicked, this, &Page::onViewFiles);
    connect(ui->defaultsButton, &QPushButton::clicked, this, &Page::onDefaults);
    connect(ui->logXrvMessages, &QCheckBox::clicked, this, &Page::onLogXrv);
}

void XRVJP2kPreferences::init()
{
    showCaches();
    showLayerDefaults();
    ui->userAgentLineEdit->setText(userAgent);
}

void XRVJP2kPreferences::showCaches()
{
    ui->xrvpMemCacheDirSizeSlider->setRange(kMinMemoryPercent, 100);
    ui->xrvpMemCacheDirSizeSlider->setValue(percentOf(memoryCacheSize, maximumMemory));
    ui->xrvpCacheDirLabel->setText(megabytesText(memoryCacheSize, kSizeFormat));
    QString advice = ui->memCacheLabel->text();
    ui->memCacheLabel->setText(
        advice.replace(QLatin1String("${MEMORY}"), megabytesText(recommendedMemory, kSizeFormat)));

    ui->diskCacheGroupBox->setChecked(streamCacheEnabled);
    ui->xrvpDiskCacheLocationEdit->setText(cacheFolder);
    ui->xrvpDiskCacheSizeSlider->setRange(kMinDiskPercent, 100);
    ui->xrvpDiskCacheSizeSlider->setValue(percentOf(diskCacheSize, kMaxDiskMb));
    ui->xrvpDiskCacheSizeLabel->setText(formatFileSize(cacheBytesUsed(), kSizeFormat));
    ui->xrvpDiskCacheLabel->setText(megabytesText(diskCacheSize, kIndentedSizeFormat));
}

void XRVJP2kPreferences::showLayerDefaults()
{
    ui->useBilinearSampling->setChecked(!nearestNeighbour);
    ui->useAdaptiveRendering->setChecked(adaptiveRendering);
    ui->useXrvTexture->setChecked(textureDither);
    ui->useOpenProgressive->setChecked(openProgressive);
    ui->clipPercent->setValue(clipPercent);
    // A stored number that is no percentage is not to be saved again as something else than is shown.
    clipPercent = ui->clipPercent->value();
    ui->useWinHTTPInXRVP->setChecked(useWinHttp);
    ui->useResilientDecoding->setChecked(resilientDecoding);
    ui->logXrvMessages->setChecked(logSdkEvents);
}

QStringList XRVJP2kPreferences::cacheFiles() const
{
    // A folder without a name would be the one that the program runs in.
    if (cacheFolder.isEmpty())
        return {};
    return QDir(cacheFolder)
        .entryList({QStringLiteral("*.data"), QStringLiteral("*.cache")}, QDir::Files, QDir::Unsorted);
}

quint64 XRVJP2kPreferences::cacheBytesUsed() const
{
    const QDir folder(cacheFolder);
    quint64 bytes = 0;
    const QStringList names = cacheFiles();
    for (const QString &name : names)
        bytes += static_cast<quint64>(QFileInfo(folder, name).size());
    return bytes;
}

void XRVJP2kPreferences::onSavePrefs()
{
    using namespace PluginSettings;
    userAgent = ui->userAgentLineEdit->text();
    write(kTextureDither, textureDither);
    write(kLocalXrvpCache, streamCacheEnabled);
    write(kXrvpCacheDir, cacheFolder);
    write(kCacheMaxMemMb, memoryCacheSize);
    write(kDiskCacheMaxSizeMb, diskCacheSize);
    write(kResilientDecoding, resilientDecoding);
    write(kOptimizeNonProgressive, optimizeNonProgressive);
    write(kNearestNeighbour, nearestNeighbour);
    write(kAdaptiveRendering, adaptiveRendering);
    write(kDefaultClipTransform, static_cast<uint>(clipPercent));
    write(kOpenProgressive, openProgressive);
    write(kUseWinHttp, useWinHttp);
    write(kXrvpUserAgent, userAgent);
    write(kLogXrvEvents, logSdkEvents);
    remove(kLogLevel);
    setLogSinksEnabled(logSdkEvents);
}

void XRVJP2kPreferences::onCacheDirSliderMove(int value)
{
    memoryCacheSize = static_cast<quint64>(static_cast<double>(maximumMemory) * (value / 100.0));
    ui->xrvpCacheDirLabel->setText(megabytesText(memoryCacheSize, kIndentedSizeFormat));
}

void XRVJP2kPreferences::onDiskCacheSliderMove(int value)
{
    diskCacheSize = static_cast<quint64>(value / 100.0 * static_cast<double>(kMaxDiskMb));
    ui->xrvpDiskCacheLabel->setText(megabytesText(diskCacheSize, kIndentedSizeFormat));
}

void XRVJP2kPreferences::onEnableXRVPCache(bool checked)
{
    streamCacheEnabled = checked;
}

void XRVJP2kPreferences::onChooseXRVPCacheDir(bool)
{
    const QString folder =
        QFileDialog::getExistingDirectory(this, tr("Choose XRVP Cache Directory"), cacheFolder,
                                          QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks);
    if (folder.isNull())
        return;
    if (!QDir(folder).exists()) {
        QMessageBox::warning(this, tr("Error"), tr("Directory does not exist!"));
        return;
    }
    cacheFolder = folder;
}

void XRVJP2kPreferences::onClipPercent(int value)
{
    clipPercent = value;
}

void XRVJP2kPreferences::onUseBilinear(bool checked)
{
    nearestNeighbour = !checked;
}

void XRVJP2kPreferences::onUseResilientDecoding(bool checked)
{
    resilientDecoding = checked;
}

void XRVJP2kPreferences::onUseAdaptiveRendering(bool checked)
{
    adaptiveRendering = checked;
}

void XRVJP2kPreferences::onUseTexturing(bool checked)
{
    textureDither = checked;
}

void XRVJP2kPreferences::onUseWinHTTPInXRVP(bool checked)
{
    useWinHttp = checked;
}

void XRVJP2kPreferences::onAlwaysOpenProgressive(bool checked)
{
    openProgressive = checked;
}

void XRVJP2kPreferences::onClearDiskCache(bool)
{
    const QString question =
        tr("Clearing the XRVP disk cache cannot be undone.\n\nAre you sure you want to clear the disk cache?");
    if (QMessageBox::question(this, tr("Disk Cache"), question, QMessageBox::Ok | QMessageBox::Cancel) !=
        QMessageBox::Ok)
        return;
    const QDir folder(cacheFolder);
    bool isCleared = true;
    const QStringList names = cacheFiles();
    for (const QString &name : names)
        isCleared = surroundings.removeFile(folder.filePath(name)) && isCleared;
    if (!isCleared) {
        QMessageBox::warning(this, tr("Disk Cache"),
                             tr("Not all files could be removed. Close all map views before clearing the cache."));
    }
}

void XRVJP2kPreferences::onViewFiles(bool)
{
    const QDir folder(cacheFolder);
    if (!folder.exists())
        folder.mkpath(QStringLiteral("."));
    if (!QDesktopServices::openUrl(QUrl(cacheFolder, QUrl::TolerantMode))) {
        QMessageBox::warning(this, tr("Error"), tr("Could not open local XRVP cache folder '%1'.").arg(cacheFolder));
    }
}

/// Memory, dither and user agent become other than what is proposed where nothing was stored.
void XRVJP2kPreferences::onDefaults(bool)
{
    using namespace PluginSettings;
    textureDither = true;
    streamCacheEnabled = kLocalXrvpCache.onPage;
    memoryCacheSize = recommendedMemory;
    cacheFolder = kXrvpCacheDir.onPage();
    diskCacheSize = kDiskCacheMaxSizeMb.onPage;
    resilientDecoding = kResilientDecoding.onPage;
    optimizeNonProgressive = kOptimizeNonProgressive.onPage;
    nearestNeighbour = kNearestNeighbour.onPage;
    clipPercent = kDefaultClipTransform.onPage;
    useWinHttp = kUseWinHttp.onPage;
    userAgent.clear();
    logSdkEvents = kLogXrvEvents.onPage;
    init();
}

void XRVJP2kPreferences::onLogXrv(bool bLogXrv)
{
    logSdkEvents = bLogXrv;
}
