#include "layerprobe.h"
#include "testimages.h"

#include <QDGui/application.h>

#include <QFile>
#include <QFileInfo>
#include <QtTest>

using namespace Korvane;

/// Opening sources, refusing them, and opening them again.
class TestLayerSource : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { folder.reset(); }

    void opensAFile();
    void refusals_data();
    void refusals();
    void refusalKeepsThePicture();
    void urlFilesThatTheSdkRefuses();
    void failedOpen();
    void failedOpenWithBackingStore();
    void reopeningCarriesSettings();
    void reopeningResetsTheRest();
    void firstOpenKeepsSmoothingFromSettings();
    void progressiveSwitch();
    void backingStoreSwitch();
    void viewSetTurnsRound();
    void defaultBands_data();
    void defaultBands();
    void namesBeyondAscii();
    void histogramsAreForgotten();

private:
    QString image(const QString &name = QStringLiteral("image.jp2")) const
    {
        return folder->makeImage(name, colourImage(64, 48));
    }
    std::unique_ptr<TestFolder> folder;
};

void TestLayerSource::init()
{
    folder = std::make_unique<TestFolder>();
    Application::instance()->clearLogHistory();
}

void TestLayerSource::opensAFile()
{
    const QString file = image();
    XRVJP2kLayer layer(nullptr);
    QVERIFY2(layer.setDataSource(file), qPrintable(layer.getLastError()));
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getLastError(), QString());
    QCOMPARE(layer.getDataSource(), file);
    QCOMPARE(layer.getDescription(), QStringLiteral("image.jp2"));
    QCOMPARE(layer.getSizeGigaPixel(), QStringLiteral("< 1 GP"));
    QVERIFY2(layer.getSizeOnDisk().endsWith(QLatin1String("B")), qPrintable(layer.getSizeOnDisk()));
    QVERIFY(QFileInfo(file).size() < 1024 * 1024);
    QCOMPARE(layer.getBandList(), QVector<int>({0, 1, 2}));
    QCOMPARE(layer.getTransparency(), 1.0);
    QCOMPARE(layer.getContrast(), 1.0);
    QCOMPARE(layer.getBrightness(), 1.0);
    QVERIFY(LayerProbe::renderer(layer)->IsProgressive());
    QVERIFY(!LayerProbe::backingRenderer(layer));
}

void TestLayerSource::refusals_data()
{
    QTest::addColumn<QByteArray>("urlText"); // null: the source is the file name alone
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("error");
    QTest::newRow("no such url file") << QByteArray() << QStringLiteral("none.url")
                                      << QStringLiteral("Could not open URL file.");
    QTest::newRow("other protocol in a url file")
        << QByteArray("URL=http://server/a.jp2\n") << QStringLiteral("Site.URL")
        << QStringLiteral("URL file contains non supported protocol type.");
    QTest::newRow("jpip") << QByteArray() << QStringLiteral("JPIP://server/image.jp2")
                          << QStringLiteral("JPIP protocol not supported.");
}

void TestLayerSource::refusals()
{
    QFETCH(QByteArray, urlText);
    QFETCH(QString, source);
    if (!urlText.isNull())
        source = folder->writeText(source, urlText);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(!layer.setDataSource(source));
    QTEST(layer.getLastError(), "error");
    QVERIFY(!layer.isValid());
}

void TestLayerSource::refusalKeepsThePicture()
{
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    const XRVJP2kRenderer *renderer = LayerProbe::renderer(layer);
    Application::instance()->clearLogHistory();
    QVERIFY(!layer.setDataSource(QStringLiteral("jpip://server/a.jp2")));
    const auto history = Application::instance()->getLogHistory();
    QCOMPARE(history.size(), 1);
    QCOMPARE(history[0].text, QStringLiteral("JPIP protocol not supported."));
    QCOMPARE(int(history[0].level), 1);
    QVERIFY(layer.isValid());
    QCOMPARE(LayerProbe::renderer(layer), renderer);
    QCOMPARE(layer.getLastError(), QStringLiteral("JPIP protocol not supported."));
}

void TestLayerSource::urlFilesThatTheSdkRefuses()
{
    for (const char *text : {"Url=xrvp://server/a.xrv\n", "URL=jpip://server/a.jp2\n"}) {
        XRVJP2kLayer layer(nullptr);
        QVERIFY(!layer.setDataSource(folder->writeText(QStringLiteral("a.url"), text)));
        QVERIFY(!layer.getLastError().isEmpty());
        QVERIFY2(!layer.getLastError().contains(QLatin1String("URL file")), qPrintable(layer.getLastError()));
        QVERIFY(layer.getLastError() != QLatin1String("JPIP protocol not supported."));
    }
}

void TestLayerSource::failedOpen()
{
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    QVERIFY(!layer.setDataSource(folder->path(QStringLiteral("none.jp2"))));
    QVERIFY(!layer.isValid());
    QVERIFY(!layer.getFile());
    QVERIFY(layer.getBandList().isEmpty());
    QVERIFY(!layer.getLastError().isEmpty());
    // What it goes on with is a first open again.
    QVERIFY(layer.setDataSource(image()));
    QCOMPARE(layer.getBandList(), QVector<int>({0, 1, 2}));
    QCOMPARE(layer.getLastError(), QString());
}

void TestLayerSource::failedOpenWithBackingStore()
{
    TestFolder::setSetting("UseBackingstore", true);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    QVERIFY(LayerProbe::backingRenderer(layer));
    QVERIFY(!layer.setDataSource(folder->path(QStringLiteral("none.jp2"))));
    QVERIFY(!LayerProbe::backingRenderer(layer));
    layer.setTransparency(0.5); // must not reach a renderer that is gone
}

void TestLayerSource::reopeningCarriesSettings()
{
    TestFolder::setSetting("UseBackingstore", true);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    layer.setTransparency(0.5);
    layer.setContrast(1.25);
    layer.setBrightness(0.75);
    layer.setTransformClip(80);
    layer.setBandList({2, 1, 0});
    layer.setResampleType(XRVJP2kLayer::Bilinear);
    QVERIFY(layer.setDataSource(image(QStringLiteral("other.jp2"))));
    QCOMPARE(layer.getTransparency(), 0.5);
    QCOMPARE(layer.getContrast(), 1.25);
    QCOMPARE(layer.getBrightness(), 0.75);
    QCOMPARE(layer.getTransformClip(), 80);
    QCOMPARE(layer.getBandList(), QVector<int>({2, 1, 0}));
    QCOMPARE(layer.getResampleType(), XRVJP2kLayer::Bilinear);
    QVERIFY(layer.getPixmapSmoothing());
    QVERIFY(LayerProbe::isSmoothing(*LayerProbe::renderer(layer)));
    const XRVJP2kRenderer *backing = LayerProbe::backingRenderer(layer);
    QCOMPARE(backing->getTransparency(), 0.5);
    QCOMPARE(backing->getTransformClip(), 80);
    QCOMPARE(int(backing->ParametersDecompress().GetResampleMethod()), 1);
}

void TestLayerSource::reopeningResetsTheRest()
{
    jp2maker::Options options = colourImage(64, 48);
    options.layerRates = {20, 10, 0};
    const QString file = folder->makeImage(QStringLiteral("layers.jp2"), options);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(file));
    QCOMPARE(layer.getMaxJp2QualityLayers(), 3);
    QCOMPARE(layer.getJp2QualityLayers(), 3);
    layer.setJp2QualityLayers(1);
    layer.setTextureDither(true);
    layer.setHillShade(true);
    layer.setAzumith(10);
    QVERIFY(layer.setDataSource(file));
    QCOMPARE(layer.getJp2QualityLayers(), 3);
    QVERIFY(!layer.getTextureDither());
    QVERIFY(!layer.getHillShade());
    QCOMPARE(layer.getAzumith(), 45.0);
}

void TestLayerSource::firstOpenKeepsSmoothingFromSettings()
{
    TestFolder::setSetting("OptimizeNearestNeighbour", false);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    QVERIFY(layer.getPixmapSmoothing());
    QVERIFY(!LayerProbe::isSmoothing(*LayerProbe::renderer(layer)));
    // The second open derives it from the resample method.
    QVERIFY(layer.setDataSource(image()));
    QVERIFY(!layer.getPixmapSmoothing());
}

void TestLayerSource::progressiveSwitch()
{
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    layer.setContrast(0.5);
    layer.setProgressive(false);
    QVERIFY(!layer.getProgressive());
    QVERIFY(!LayerProbe::renderer(layer)->IsProgressive());
    QCOMPARE(layer.getContrast(), 0.5);
    layer.setProgressive(true);
    QVERIFY(LayerProbe::renderer(layer)->IsProgressive());
}

void TestLayerSource::backingStoreSwitch()
{
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    layer.setBackingStore(true);
    QVERIFY(layer.getBackingStore());
    const XRVJP2kRenderer *backing = LayerProbe::backingRenderer(layer);
    QVERIFY(backing);
    QVERIFY(layer.getFreeCache());
    // The main renderer stays when only the backing one goes.
    XRVJP2kRenderer *renderer = LayerProbe::renderer(layer);
    renderer->setHillShade(true);
    layer.setBackingStore(false);
    QVERIFY(!LayerProbe::backingRenderer(layer));
    QVERIFY(layer.getHillShade());
    // Off once more, there is none to delete: the source is opened again, which resets the hill shade.
    layer.setFreeCache(false);
    layer.setBackingStore(false);
    QVERIFY(!layer.getBackingStore());
    QVERIFY(!LayerProbe::backingRenderer(layer));
    QVERIFY(!layer.getHillShade());
    QVERIFY(!layer.getFreeCache());
    // On while on opens again too.
    layer.setBackingStore(true);
    layer.setHillShade(true);
    layer.setBackingStore(true);
    QVERIFY(!layer.getHillShade());
}

void TestLayerSource::viewSetTurnsRound()
{
    TestFolder::setSetting("OpenProgressive", false);
    TestFolder::setSetting("UseBackingstore", true);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    viewWhole(layer);
    QVERIFY(LayerProbe::isViewSet(layer));

    // The view is requested anew; that it succeeded is told as "not set", and the backing renderer gets no view.
    QVERIFY(layer.setDataSource(image()));
    QVERIFY(!LayerProbe::isViewSet(layer));
    QCOMPARE(layer.getFile()->GetSetViewInfo().nSizeX, 64U);
    QVERIFY(!LayerProbe::backingRenderer(layer)->IsViewSet());

    // A band that the next image does not have makes the request fail, and that is told as "set".
    viewWhole(layer);
    jp2maker::Options grey;
    QVERIFY(layer.setDataSource(folder->makeImage(QStringLiteral("grey.jp2"), grey)));
    QVERIFY(LayerProbe::isViewSet(layer));
    QVERIFY(!layer.getFile()->IsViewSet());
}

void TestLayerSource::defaultBands_data()
{
    QTest::addColumn<int>("bands");
    QTest::addColumn<bool>("opacity");
    QTest::addColumn<QVector<int>>("expected");
    QTest::newRow("grey") << 1 << false << QVector<int>{0, 0, 0};
    QTest::newRow("grey with opacity") << 2 << true << QVector<int>{0, 0, 0, 1};
    QTest::newRow("colour") << 3 << false << QVector<int>{0, 1, 2};
    QTest::newRow("colour with opacity") << 4 << true << QVector<int>{0, 1, 2, 3};
}

void TestLayerSource::defaultBands()
{
    QFETCH(int, bands);
    QFETCH(bool, opacity);
    jp2maker::Options options;
    options.components.assign(static_cast<size_t>(bands), jp2maker::Component());
    options.opacityLast = opacity;
    XRVJP2kLayer layer(nullptr);
    QVERIFY2(layer.setDataSource(folder->makeImage(QStringLiteral("bands.jp2"), options)),
             qPrintable(layer.getLastError()));
    QTEST(layer.getBandList(), "expected");
    QCOMPARE(layer.hasOpacity(), opacity);
    QCOMPARE(layer.getOpacityBandNumber(), opacity ? bands - 1 : -1);
}

void TestLayerSource::namesBeyondAscii()
{
    const QString name = QString::fromUtf8("\xc3\x9c"
                                           "bersicht \xe6\x9d\xb1\xe4\xba\xac.jp2");
    const QString file = image(name);
    XRVJP2kLayer layer(nullptr);
    QVERIFY2(layer.setDataSource(file), qPrintable(layer.getLastError()));
    const QString sizeOnDisk = layer.getSizeOnDisk();
    QCOMPARE(layer.getDescription(), name);
    // The name is kept as the bytes of its UTF-8 form, and opened by it again.
    QCOMPARE(layer.getDataSource(), QString::fromLatin1(file.toUtf8()));
    layer.setProgressive(false);
    QVERIFY2(layer.isValid(), qPrintable(layer.getLastError()));
    layer.setBackingStore(true);
    QVERIFY2(layer.isValid(), qPrintable(layer.getLastError()));
    QVERIFY(LayerProbe::backingRenderer(layer));
    QVERIFY(layer.setDataSource(layer.getDataSource()));
    QCOMPARE(layer.getDataSource(), QString::fromLatin1(file.toUtf8()));
    QCOMPARE(layer.getDescription(), name);
    QCOMPARE(layer.getSizeOnDisk(), sizeOnDisk);
}

void TestLayerSource::histogramsAreForgotten()
{
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.setDataSource(image()));
    QCOMPARE(layer.getHistograms(false, false, {}, 0, 0, 0, 0).size(), 3);
    QVERIFY(!layer.setDataSource(QStringLiteral("jpip://refused/before/anything/is/closed")));
    jp2maker::Options grey;
    QVERIFY(layer.setDataSource(folder->makeImage(QStringLiteral("grey.jp2"), grey)));
    QCOMPARE(layer.getHistograms(false, false, {}, 0, 0, 0, 0).size(), 1);
}

QTEST_MAIN(TestLayerSource)
#include "tst_layersource.moc"
