#include "data/testfolder.h"
#include "logging/logsinks.h"
#include "plugin/geodeticdata.h"
#include "plugin/hostprocess.h"
#include "plugin/sdksettings.h"
#include "plugin/xrvjp2klayerplugin.h"

#include <QDGui/application.h>
#include <xrv60/plkfile.h>

#include <QDir>
#include <QLibrary>
#include <QtTest>

using Korvane::Application;

/// What the plug-in does with the SDK when it is made: report, configuration, data path.
class TestStartUp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { folder.reset(); }
    void reportOfDefaults();
    void settings();
    void memoryLimit();
    void httpModule();
    void geodeticPath_data();
    void geodeticPath();

private:
    QStringList report() const;
    std::unique_ptr<TestFolder> folder;
};

void TestStartUp::init()
{
    folder = std::make_unique<TestFolder>();
    setLogSinksEnabled(false); // the report alone
    Application::instance()->clearLogHistory();
}

QStringList TestStartUp::report() const
{
    const XRVJP2kLayerPlugin plugin;
    QStringList lines;
    for (const auto &entry : Application::instance()->getLogHistory()) {
        if (entry.level == Application::LogDebug)
            lines.append(entry.text);
    }
    return lines;
}

void TestStartUp::reportOfDefaults()
{
    const QStringList expected = {
        QStringLiteral("Begin XRV JPEG 2000 Plugin initialization log"),
        QStringLiteral("      XRV Library Version : 6.0.0.1513"),
        QStringLiteral("      XRVP local disk cache enabled : true"),
        QStringLiteral("      XRVP local disk cache dir: ") + QDir::tempPath(),
        QStringLiteral("      XRVP local disk cache max size (Mb): 256"),
        QStringLiteral("      XRV apply texture dither: false"),
        QStringLiteral("      Cache max mem (Mb): 512"),
        QStringLiteral("      Use resilient decoding: true"),
        QStringLiteral("      Optimize for nearest neighbour resampling: 1"),
        QStringLiteral("      XRVP HTTP User-Agent: "),
        QStringLiteral("      Using WinHttp (instead of WinInet) for XRVP streaming: 0"),
        QStringLiteral("End XRV JPEG 2000 Plugin initialization log"),
    };
    QCOMPARE(report(), expected);
}

void TestStartUp::settings()
{
    TestFolder::setSetting("TextureDither", true);
    TestFolder::setSetting("LocalXrvpCache", false);
    TestFolder::setSetting("XrvpCacheDir", QStringLiteral("/some/%1/folder"));
    TestFolder::setSetting("CacheMaxMemMb", 50); // no less than 100 are given
    TestFolder::setSetting("DiskCacheMaxSizeMb", 1000);
    TestFolder::setSetting("ResilientDecoding", false);
    TestFolder::setSetting("OptimizeNearestNeighbour", false);
    TestFolder::setSetting("XRVPUserAgent", QStringLiteral("Agent/1"));
    TestFolder::setSetting("UseWinHTTPInXrvp", true);
    QCOMPARE(report().size(), 12);
    const PLK::SDK::CConfig &config = PLK::SDK::CFileBase::sFilesHelper().Get()->Config();
    QVERIFY(config.IsTextureDitherEnabled());
    QVERIFY(!config.IsXrvpCacheEnabled());
    QCOMPARE(config.GetXrvpCacheLocation(), std::string("/some/%1/folder"));
    QCOMPARE(config.GetXrvpCacheSizeMb(), 1000);
    QCOMPARE(quint64(config.GetCacheMaxmem()), quint64(100) << 20);
    QVERIFY(!config.IsResilientDecodingEnabled());
    QVERIFY(!config.GetOptimizeUseNearestNeighbour());
    QCOMPARE(config.GetXrvpClientHttpUserAgent(), std::string("Agent/1"));
    QCOMPARE(config.GetBlockingTimeMS(), 0U);
    QCOMPARE(config.GetRefreshTimeMS(), 0U);
    QCOMPARE(int(config.GetProjectionFormat()), 1);
}

void TestStartUp::httpModule()
{
    const auto isLoaded = [](const char *name) { return HostProcess::isModuleLoaded(QLatin1String(name)); };
    QVERIFY(!isLoaded("winhttppal.dll"));
    QLibrary module(QStringLiteral(WINHTTPPAL_FILE));
    QVERIFY2(module.load(), qPrintable(module.errorString()));
    QVERIFY(isLoaded("winhttppal.dll") && isLoaded("WinHttpPal.DLL")); // the names of modules have no case
    for (const char *name : {"httppal.dll", "modules/winhttppal.dll", ""})
        QVERIFY2(!isLoaded(name), name);
    QCOMPARE(report().size(), 12); // WinHTTP is not wanted
    TestFolder::setSetting("UseWinHTTPInXrvp", true);
    Application::instance()->clearLogHistory();
    const QStringList lines = report();
    QVERIFY(module.unload());
    QVERIFY(!isLoaded("winhttppal.dll"));
    QCOMPARE(lines.size(), 13);
    QCOMPARE(lines[11], QStringLiteral("      Using winhttppal.dll (curl abstraction library) instead of winhhtp.dll"));
}

/// Computed in 32 bits, with the sign.
void TestStartUp::memoryLimit()
{
    QCOMPARE(cacheMaxMemBytes(2047), quint64(2146435072));
    QCOMPARE(cacheMaxMemBytes(2048), quint64(0xffffffff80000000ULL));
    QCOMPARE(cacheMaxMemBytes(4096), quint64(0));
}

void TestStartUp::geodeticPath_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QChar>("separator");
    QTest::addColumn<QString>("path");
    const QChar back = QLatin1Char('\\');
    QTest::newRow("folder") << QStringLiteral("C:\\a\\b\\viewer.exe") << back << QStringLiteral("C:\\a\\b\\..\\..");
    QTest::newRow("doubled separator") << QStringLiteral("C:\\\\viewer.exe") << back << QStringLiteral("C:\\..\\..");
    QTest::newRow("no folder") << QStringLiteral("viewer.exe") << back << QStringLiteral("viewer.exe\\..\\..");
    QTest::newRow("empty") << QString() << back << QStringLiteral("\\..\\..");
    QTest::newRow("slashes") << QStringLiteral("/opt/app/bin/viewer") << QChar(QLatin1Char('/'))
                             << QStringLiteral("/opt/app/bin/../..");
}

void TestStartUp::geodeticPath()
{
    QFETCH(QString, executable);
    QFETCH(QChar, separator);
    QTEST(geodeticDataPath(executable, separator), "path");
}

QTEST_MAIN(TestStartUp)
#include "tst_startup.moc"
