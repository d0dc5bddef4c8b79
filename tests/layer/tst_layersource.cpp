#include "layertest.h"

#include <QDGui/application.h>
#include <xrv60/plkinit.h>

#include <QFile>
#include <QFileInfo>
#include <QMetaProperty>
#include <QtTest>

#include <numeric>

using namespace Korvane;

/// Opening sources, refusing them, opening them again, and what the layer then tells of its image.
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
    void failedOpen();
    void reopening();
    void firstOpenKeepsSmoothingFromSettings();
    void switchesOpenAgain();
    void viewSetTurnsRound();
    void bands_data();
    void bands();
    void namesBeyondAscii();
    void withoutASource();
    void cellTypes_data();
    void cellTypes();
    void formatAndProtocol_data();
    void formatAndProtocol();
    void geoReference();
    void histograms();

private:
    QString image(const QString &name = QStringLiteral("image.jp2")) const
    {
        return folder->makeImage(name, colourImage(64, 48));
    }
    static QVector<Map::HistogramT<quint64>> histogramsOf(XRVJP2kLayer &layer, bool reset = false)
    {
        return layer.getHistograms(reset, false, QSize(), 0, 0, 0, 0);
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
    const auto layer = openLayer(file);
    QVERIFY(layer->isValid());
    QCOMPARE(layer->getLastError(), QString());
    QCOMPARE(layer->getDataSource(), file);
    QCOMPARE(layer->getDescription(), QStringLiteral("image.jp2"));
    QCOMPARE(layer->getSizeGigaPixel(), QStringLiteral("< 1 GP"));
    QCOMPARE(layer->getSizeOnDisk(), QString::number(QFileInfo(file).size()) + QLatin1String(".00 B"));
    QVERIFY(rendererOf(*layer)->IsProgressive());
    QVERIFY(!backingOf(*layer));
}

void TestLayerSource::refusals_data()
{
    QTest::addColumn<QByteArray>("urlText"); // null: the source is the file name alone
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("error"); // empty: the SDK's
    const QString url = QStringLiteral("Site.URL");
    QTest::newRow("no such url file") << QByteArray() << "none.url"
                                      << "Could not open URL file.";
    QTest::newRow("other protocol in a url file")
        << QByteArray("URL=http://server/a.jp2\n") << url << "URL file contains non supported protocol type.";
    QTest::newRow("jpip") << QByteArray() << "JPIP://server/image.jp2"
                          << "JPIP protocol not supported.";
    QTest::newRow("url file without an address") << QByteArray("Url=xrvp://server/a.xrv\n") << url << "";
    QTest::newRow("jpip in a url file") << QByteArray("URL=jpip://server/a.jp2\n") << url << "";
}

void TestLayerSource::refusals()
{
    QFETCH(QByteArray, urlText);
    QFETCH(QString, source);
    QFETCH(QString, error);
    if (!urlText.isNull())
        source = folder->writeText(source, urlText);
    XRVJP2kLayer layer(nullptr);
    QVERIFY(!layer.setDataSource(source));
    QVERIFY(!layer.isValid());
    const QString said = layer.getLastError();
    if (!error.isEmpty())
        QCOMPARE(said, error);
    else
        QVERIFY2(!said.isEmpty() && !said.contains(QLatin1String("URL file")) &&
                     said != QLatin1String("JPIP protocol not supported."),
                 qPrintable(said));
}

void TestLayerSource::refusalKeepsThePicture()
{
    const auto layer = openLayer(image());
    const PLK::CView *view = layer->getFile();
    Application::instance()->clearLogHistory();
    QVERIFY(!layer->setDataSource(QStringLiteral("jpip://server/a.jp2")));
    const auto history = Application::instance()->getLogHistory();
    QCOMPARE(history.size(), 1);
    QCOMPARE(history[0].text, layer->getLastError());
    QCOMPARE(int(history[0].level), 1);
    QVERIFY(layer->isValid());
    QCOMPARE(layer->getFile(), view);
}

void TestLayerSource::failedOpen()
{
    TestFolder::setSetting("UseBackingstore", true);
    const auto layer = openLayer(image());
    QVERIFY(backingOf(*layer));
    QVERIFY(!layer->setDataSource(folder->path(QStringLiteral("none.jp2"))));
    QVERIFY(!layer->isValid());
    QVERIFY(!layer->getFile() && !backingOf(*layer));
    QVERIFY(layer->getBandList().isEmpty());
    QVERIFY(!layer->getLastError().isEmpty());
    layer->setTransparency(0.5); // must not reach a renderer that is gone
    // What it goes on with is a first open again.
    QVERIFY(layer->setDataSource(image()));
    QCOMPARE(layer->getBandList(), QVector<int>({0, 1, 2}));
    QCOMPARE(layer->getLastError(), QString());
}

void TestLayerSource::reopening()
{
    TestFolder::setSetting("UseBackingstore", true);
    TestFolder::setSetting("OpenProgressive", false);
    jp2maker::Options options = colourImage(64, 48);
    options.cell = [](int, int x, int) { return 4 * x; };
    options.layerRates = {20, 10, 0};
    const QString file = folder->makeImage(QStringLiteral("layers.jp2"), options);
    const auto layer = openLayer(file);
    QCOMPARE(layer->getJp2QualityLayers(), 3);
    layer->setTransparency(0.5);
    layer->setContrast(1.25);
    layer->setBrightness(0.75);
    layer->setTransformClip(80);
    layer->setBandList({2, 1, 0});
    layer->setResampleType(XRVJP2kLayer::Bilinear);
    layer->setJp2QualityLayers(1);
    layer->setTextureDither(true);
    layer->setHillShade(true);
    layer->setAzumith(10);
    QVERIFY(layer->setDataSource(file));
    // These are carried over, to both renderers,
    for (const XRVJP2kRenderer *one : {rendererOf(*layer), backingOf(*layer)}) {
        QCOMPARE(one->getTransparency(), 0.5);
        QCOMPARE(one->getContrast(), 1.25);
        QCOMPARE(one->getBrightness(), 0.75);
        QCOMPARE(one->getTransformClip(), 80);
        QCOMPARE(int(one->ParametersDecompress().GetResampleMethod()), 1);
    }
    QCOMPARE(layer->getBandList(), QVector<int>({2, 1, 0}));
    QVERIFY(layer->getPixmapSmoothing());
    // and these are not.
    QCOMPARE(layer->getJp2QualityLayers(), 3);
    QVERIFY(!layer->getTextureDither());
    QVERIFY(!layer->getHillShade());
    QCOMPARE(layer->getAzumith(), 45.0);
    layer->setTransparency(1.0);
    QVERIFY(isSmoothed(*layer));
}

void TestLayerSource::firstOpenKeepsSmoothingFromSettings()
{
    TestFolder::setSetting("OptimizeNearestNeighbour", false);
    TestFolder::setSetting("OpenProgressive", false);
    const QString file = folder->makeImage(QStringLiteral("grey.jp2"), jp2maker::Options());
    const auto layer = openLayer(file);
    QVERIFY(layer->getPixmapSmoothing());
    QVERIFY(!isSmoothed(*layer));
    // The second open derives it from the resample method.
    QVERIFY(layer->setDataSource(file));
    QVERIFY(!layer->getPixmapSmoothing());
}

void TestLayerSource::switchesOpenAgain()
{
    const auto layer = openLayer(image());
    layer->setProgressive(false);
    QVERIFY(!rendererOf(*layer)->IsProgressive());
    layer->setProgressive(true);
    QVERIFY(rendererOf(*layer)->IsProgressive());

    layer->setBackingStore(true);
    QVERIFY(backingOf(*layer) && layer->getFreeCache());
    // The main renderer stays when only the backing one goes.
    layer->setHillShade(true);
    layer->setBackingStore(false);
    QVERIFY(!backingOf(*layer));
    QVERIFY(layer->getHillShade());
    // Off once more, there is none to delete: the source is opened again, which resets the hill shade.
    layer->setFreeCache(false);
    layer->setBackingStore(false);
    QVERIFY(!backingOf(*layer) && !layer->getHillShade() && !layer->getFreeCache());
    // On while on opens again too.
    layer->setBackingStore(true);
    layer->setHillShade(true);
    layer->setBackingStore(true);
    QVERIFY(!layer->getHillShade());
}

void TestLayerSource::viewSetTurnsRound()
{
    TestFolder::setSetting("OpenProgressive", false);
    TestFolder::setSetting("UseBackingstore", true);
    const auto layer = openLayer(image());
    viewWhole(*layer);
    // The view is requested anew; that it succeeded is told as "not set", and the backing renderer gets no view.
    QVERIFY(layer->setDataSource(image()));
    QCOMPARE(layer->getFile()->GetSetViewInfo().nSizeX, 64U);
    QVERIFY(!backingOf(*layer)->IsViewSet());
    QVERIFY(layer->setDataSource(image()));
    QVERIFY(!layer->getFile()->IsViewSet());

    // A band that the next image does not have makes the request fail, and that is told as "set".
    viewWhole(*layer);
    QVERIFY(layer->setDataSource(folder->makeImage(QStringLiteral("grey.jp2"), jp2maker::Options())));
    QVERIFY(!layer->getFile()->IsViewSet());
    QVERIFY(layer->setDataSource(image()));
    QVERIFY(layer->getFile()->IsViewSet());
}

void TestLayerSource::bands_data()
{
    QTest::addColumn<int>("bands");
    QTest::addColumn<bool>("opacity");
    QTest::addColumn<QVector<int>>("list");
    QTest::addColumn<QString>("names");
    QTest::newRow("grey") << 1 << false << QVector<int>{0, 0, 0} << "Greyscale";
    QTest::newRow("grey with opacity") << 2 << true << QVector<int>{0, 0, 0, 1} << "Greyscale AllOpacity";
    QTest::newRow("colour") << 3 << false << QVector<int>{0, 1, 2} << "Red Green Blue";
    QTest::newRow("colour with opacity") << 4 << true << QVector<int>{0, 1, 2, 3} << "Red Green Blue AllOpacity";
}

void TestLayerSource::bands()
{
    QFETCH(int, bands);
    QFETCH(bool, opacity);
    jp2maker::Options options;
    options.components.assign(static_cast<size_t>(bands), jp2maker::Component());
    options.opacityLast = opacity;
    const auto layer = openLayer(folder->makeImage(QStringLiteral("bands.jp2"), options));
    QTEST(layer->getBandList(), "list");
    QTEST(layer->getBandDescriptions().join(QLatin1Char(' ')), "names");
    QCOMPARE(layer->getNumberOfBands(), bands);
    QCOMPARE(layer->hasOpacity(), opacity);
    QCOMPARE(layer->getOpacityBandNumber(), opacity ? bands - 1 : -1);
    QCOMPARE(int(layer->getColorSpace()), bands < 3 ? 1 : 0);
}

void TestLayerSource::namesBeyondAscii()
{
    const QString name = QString::fromUtf8("Übersicht 東京.jp2");
    const QString file = image(name);
    const auto layer = openLayer(file);
    const QString sizeOnDisk = layer->getSizeOnDisk();
    QCOMPARE(layer->getDescription(), name);
    // The name is kept as the bytes of its UTF-8 form, and opened by it again.
    QCOMPARE(layer->getDataSource(), QString::fromLatin1(file.toUtf8()));
    layer->setProgressive(false);
    QVERIFY2(layer->isValid(), qPrintable(layer->getLastError()));
    layer->setBackingStore(true);
    QVERIFY2(layer->isValid() && backingOf(*layer), qPrintable(layer->getLastError()));
    QVERIFY(layer->setDataSource(layer->getDataSource()));
    QCOMPARE(layer->getDataSource(), QString::fromLatin1(file.toUtf8()));
    QCOMPARE(layer->getDescription(), name);
    QCOMPARE(layer->getSizeOnDisk(), sizeOnDisk);
}

void TestLayerSource::withoutASource()
{
    XRVJP2kLayer layer(nullptr);
    for (int i = 0; i < layer.metaObject()->propertyCount(); ++i)
        QVERIFY2(layer.metaObject()->property(i).read(&layer).isValid(), layer.metaObject()->property(i).name());
    for (const QString &text : {layer.getCellType(), layer.getCoordSysName(), layer.getFormat(), layer.getSizeOnDisk()})
        QCOMPARE(text, QStringLiteral("Unknown"));
    QCOMPARE(layer.getBounds(), QRectF(-180, 90, 360, -180));
    XRVJP2kLayer::Jp2FileInfo info;
    QVERIFY(!layer.getFileInfo() && !layer.getStatistics() && !layer.getRPCInfo() && !layer.getJp2FileInfo(info));
    QVERIFY(histogramsOf(layer).isEmpty());
}

void TestLayerSource::cellTypes_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::newRow("UInt8") << 1 << false;
    QTest::newRow("UInt16") << 12 << false;
    QTest::newRow("Int8") << 8 << true;
    QTest::newRow("Int16") << 16 << true;
    QTest::newRow("UInt32") << 20 << false;
}

void TestLayerSource::cellTypes()
{
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    jp2maker::Options options;
    options.components = {{bits, isSigned, 1, 1}};
    const auto layer = openLayer(folder->makeImage(QStringLiteral("image.jp2"), options));
    QCOMPARE(layer->getCellType(), QLatin1String(QTest::currentDataTag()));
}

void TestLayerSource::formatAndProtocol_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("protocol");
    QTest::newRow("a.jp2") << "JPEG 2000"
                           << "Local JPEG 2000 file";
    QTest::newRow("a.JPX") << "JPEG 2000"
                           << "Local file";
    QTest::newRow("a.jpc") << "JPEG 2000"
                           << "Local file";
    QTest::newRow("a.jpf") << "Unknown"
                           << "Local file";
    QTest::newRow("a.xrv.copy") << "Unknown"
                                << "Local XRV file";
    QTest::newRow("a.jp2.bak") << "Unknown"
                               << "Local JPEG 2000 file";
    // The content decides what is opened, the name what is told of it.
    QTest::newRow("A.XRV") << "MILTO XRV"
                           << "Local file";
}

void TestLayerSource::formatAndProtocol()
{
    const QString name = QString::fromLatin1(QTest::currentDataTag());
    const auto layer = openLayer(folder->makeImage(name, jp2maker::Options()));
    QTEST(layer->getFormat(), "format");
    QTEST(layer->getProtocol(), "protocol");
}

void TestLayerSource::geoReference()
{
    const QString file = folder->makeImage(QStringLiteral("image.jp2"), colourImage(40, 30));
    // A world file gives the centre of the first cell.
    folder->writeText(QStringLiteral("image.j2w"), "2.5\n0\n0\n-2.5\n1001.25\n5998.75\n");
    const auto layer = openLayer(file);
    QCOMPARE(layer->getSize(), QSize(40, 30));
    QCOMPARE(layer->getCellSizeX(), 2.5);
    QCOMPARE(layer->getCellSizeY(), -2.5);
    QCOMPARE(layer->getBounds(), QRectF(1000, 6000, 100, -75));
    QCOMPARE(layer->getCoordSysName(), QStringLiteral("Unknown"));
    QCOMPARE(layer->getEpsgCode(), 0);
}

void TestLayerSource::histograms()
{
    const auto layer = openLayer(folder->makeImage(QStringLiteral("image.jp2"), colourImage(64, 64)));
    const auto first = histogramsOf(*layer);
    QCOMPARE(first.size(), 3);
    QCOMPARE(first[0].bandName, QStringLiteral("Red"));
    QCOMPARE(first[0].minimumValue, quint64(0));
    QCOMPARE(first[0].maximumValue, quint64(63));
    QCOMPARE(first[0].mean, 31.5);
    QCOMPARE(first[2].mode, 50.0);
    QCOMPARE(first[2].largestCount, quint64(64 * 64));
    QCOMPARE(std::accumulate(first[1].buckets.begin(), first[1].buckets.end(), quint64(0)), quint64(64 * 64));
    // A reset gives nothing, the next call computes anew.
    QVERIFY(histogramsOf(*layer, true).isEmpty());
    QCOMPARE(histogramsOf(*layer).size(), 3);

    jp2maker::Options options;
    options.components = {{8, true, 1, 1}};
    options.cell = [](int, int x, int) { return x - 32; };
    QVERIFY(layer->setDataSource(folder->makeImage(QStringLiteral("signed.jp2"), options)));
    const auto others = histogramsOf(*layer);
    QCOMPARE(others.size(), 1);
    QCOMPARE(others[0].minimumValue, quint64(0)); // nothing below fits the type
    QCOMPARE(others[0].maximumValue, quint64(31));
    QCOMPARE(others[0].mean, -0.5);
}

QTEST_MAIN(TestLayerSource)
#include "tst_layersource.moc"
