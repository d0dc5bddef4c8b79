#include "xrvjp2klayerplugin.h"

#include "geodeticdata.h"
#include "hostprocess.h"
#include "layer/xrvjp2klayer.h"
#include "logging/logsinks.h"

#include <QDGui/application.h>
#include <QDGui/xrvpbrowser.h>
#include <xrv60/plkinit.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <QMessageBox>
#include <QSettings>
#include <QStringList>
#include <QTranslator>

#include <memory>

using Korvane::Application;
using Korvane::XRVJP2kLayer;
using Korvane::Gui::XRVPBrowser;

namespace {

bool pluginEnabled = true;

constexpr char kVersion[] = "6.0.0.1513";
constexpr char kWinHttpReplacement[] = "winhttppal.dll";

QString trueOrFalse(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

QString patterns(QStringList extensions)
{
    for (QString &extension : extensions)
        extension.prepend(QLatin1Char('*'));
    return extensions.join(QLatin1Char(' '));
}

/// A host may leave the plug-in to the end of the process. The toolkit's application object is gone by then, and no
/// widget can be destroyed without it.
void deleteBrowser(XRVPBrowser *browser)
{
    if (QCoreApplication::instance())
        delete browser;
}

} // namespace

XRVJP2kLayerPlugin::XRVJP2kLayerPlugin(QObject *parent)
    : QObject(parent)
    , translators(Application::instance()->initializeTranslations({QStringLiteral("xrvjp2klayer")}, QLocale().name()))
{
    const SdkSettings settings = readSdkSettings();
    PLK::CLog::RegisterLogger(&charLogSink());
    PLK::CLog::RegisterLogger(&wcharLogSink());
    logStartUp(settings);
    startSdk(settings);
    createBrowser();
}

XRVJP2kLayerPlugin::~XRVJP2kLayerPlugin()
{
    endSdk();
}

void XRVJP2kLayerPlugin::endSdk()
{
    if (!isSdkStarted)
        return;
    isSdkStarted = false;
    PLK::CLog::RegisterLogger(static_cast<PLK::ILogger<char> *>(nullptr));
    PLK::CLog::RegisterLogger(static_cast<PLK::ILogger<wchar_t> *>(nullptr));
    PLKShutdown();
}

/// Reports the settings, not what the SDK makes of them: it is written before the SDK is started.
void XRVJP2kLayerPlugin::logStartUp(const SdkSettings &settings) const
{
    QStringList lines = {
        tr("Begin XRV JPEG 2000 Plugin initialization log"),
        tr("      XRV Library Version : %1").arg(QLatin1String(kVersion)),
        tr("      XRVP local disk cache enabled : %1").arg(trueOrFalse(settings.localXrvpCache)),
        tr("      XRVP local disk cache dir: %1").arg(settings.xrvpCacheDir),
        tr("      XRVP local disk cache max size (Mb): %1").arg(settings.diskCacheMaxSizeMb),
        tr("      XRV apply texture dither: %1").arg(trueOrFalse(settings.textureDither)),
        tr("      Cache max mem (Mb): %1").arg(settings.cacheMaxMemMb),
        tr("      Use resilient decoding: %1").arg(trueOrFalse(settings.resilientDecoding)),
        tr("      Optimize for nearest neighbour resampling: %1").arg(int(settings.optimizeNearestNeighbour)),
        tr("      XRVP HTTP User-Agent: %1").arg(settings.xrvpUserAgent),
        tr("      Using WinHttp (instead of WinInet) for XRVP streaming: %1").arg(int(settings.useWinHttp)),
    };
    const QLatin1String replacement(kWinHttpReplacement);
    if (settings.useWinHttp && HostProcess::isModuleLoaded(replacement))
        lines << tr("      Using %1 (curl abstraction library) instead of winhhtp.dll").arg(replacement);
    lines << tr("End XRV JPEG 2000 Plugin initialization log");
    for (const QString &line : qAsConst(lines))
        Application::logMessage(line, Application::LogDebug, QDateTime::currentDateTime());
}

void XRVJP2kLayerPlugin::startSdk(const SdkSettings &settings)
{
    PLKInit();
    isSdkStarted = true;
    // When a plug-in left to the end of the process goes, what the SDK is made of is gone already.
    connect(QCoreApplication::instance(), &QObject::destroyed, this, &XRVJP2kLayerPlugin::endSdk);
    applySdkSettings(settings);
    if (settings.useWinHttp)
        PLKWinHttpSetUseWinHttp(1);
    const QString dataPath = geodeticDataPath(HostProcess::executableFileName(), QDir::separator());
    PLKSetGDTPath(dataPath.toLocal8Bit().constData());
}

void XRVJP2kLayerPlugin::createBrowser()
{
    xrvpBrowser = QSharedPointer<XRVPBrowser>(new XRVPBrowser(nullptr, XRVPBrowser::XRVP), deleteBrowser);
    xrvpBrowser->setWindowIcon(QIcon(QStringLiteral(":/Resources/pnxlogo.png")));
}

QString XRVJP2kLayerPlugin::getVersion() const
{
    return QLatin1String(kVersion);
}

QString XRVJP2kLayerPlugin::getVendor() const
{
    return QCoreApplication::organizationName();
}

QString XRVJP2kLayerPlugin::getDescription() const
{
    return QStringLiteral("XRV JPEG 2000");
}

QString XRVJP2kLayerPlugin::getClassName() const
{
    return QStringLiteral("Korvane::XRVJP2kLayer");
}

QString XRVJP2kLayerPlugin::getId() const
{
    return QStringLiteral("18B1BFEA-0F8D-4a6f-9B57-DB14C81B5C93");
}

QIcon XRVJP2kLayerPlugin::getIcon() const
{
    return QIcon(QStringLiteral(":/Resources/logo.png"));
}

QString XRVJP2kLayerPlugin::getFileFilter() const
{
    const QString xrv = patterns({QStringLiteral(".xrv")});
    const QString jpeg2000 = patterns({QStringLiteral(".jp2"), QStringLiteral(".j2k"), QStringLiteral(".j2c"),
                                       QStringLiteral(".jpc"), QStringLiteral(".jpx"), QStringLiteral(".jpf")});
    return QStringLiteral("XRV Image (%1);;XRVP / JPIP Url(*.url);;JPEG 2000 Image(%2)").arg(xrv, jpeg2000);
}

void XRVJP2kLayerPlugin::setEnabled(bool enabled)
{
    pluginEnabled = enabled;
}

bool XRVJP2kLayerPlugin::isEnabled() const
{
    return pluginEnabled;
}

Korvane::Map::Layer *XRVJP2kLayerPlugin::createLayer(bool askForUrl)
{
    auto layer = std::make_unique<XRVJP2kLayer>(nullptr);
    if (!askForUrl)
        return layer.release();
    const QString address = XRVPBrowser::getXrvpUrl(nullptr, XRVPBrowser::XRVP);
    if (address.isEmpty())
        return nullptr;
    if (!layer->setDataSource(address)) {
        QMessageBox::warning(nullptr, tr("XRV JP2 Error:"), layer->getLastError(), QMessageBox::Ok,
                             QMessageBox::NoButton);
        return nullptr;
    }
    return layer.release();
}
