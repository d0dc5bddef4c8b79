#include "layerprobe.h"
#include "testimages.h"

#include <QDGui/application.h>
#include <QDGui/irendererclient.h>

#include <QDomDocument>
#include <QMetaProperty>
#include <QtTest>

#include <functional>

using namespace Korvane;

using Change = std::function<void(XRVJP2kLayer &)>;
Q_DECLARE_METATYPE(Change)

/// The layer object: what it starts with, what its setters do, and how it is saved.
class TestLayerSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { folder = std::make_unique<TestFolder>(); }
    void cleanup() { folder.reset(); }

    void freshLayer();
    void settersOfAFreshLayer();
    void settingsAreRead();
    void outlineColourThatIsNone();
    void propertyTable();
    void propertiesAreReadAndWritten();
    void interfacesByName();
    void redrawsOfSetters_data();
    void redrawsOfSetters();
    void backingRendererFollows();
    void refreshWithoutAView();
    void savesNothingOfItsOwn();
    void clientHearsOfRefresh();

private:
    std::unique_ptr<XRVJP2kLayer> openedLayer() const;
    std::unique_ptr<TestFolder> folder;
};

std::unique_ptr<XRVJP2kLayer> TestLayerSettings::openedLayer() const
{
    auto layer = std::make_unique<XRVJP2kLayer>(nullptr);
    const QString file = folder->makeImage(QStringLiteral("image.jp2"), colourImage(64, 48));
    if (!layer->setDataSource(file))
        qFatal("cannot open the test image: %s", qPrintable(layer->getLastError()));
    return layer;
}

void TestLayerSettings::freshLayer()
{
    XRVJP2kLayer layer(nullptr);
    QVERIFY(!layer.isValid());
    QVERIFY(layer.isVisible());
    QCOMPARE(layer.getTransformClip(), 100);
    QCOMPARE(layer.getCellSizeX(), 1.0);
    QCOMPARE(layer.getCellSizeY(), 1.0);
    QCOMPARE(layer.getJp2QualityLayers(), -1);
    QCOMPARE(layer.getMaxJp2QualityLayers(), -1);
    QCOMPARE(layer.getOpacityBandNumber(), -1);
    QCOMPARE(int(layer.getPercentComplete()), -1);
    QCOMPARE(layer.getNumberOfBands(), 0);
    QVERIFY(!layer.hasOpacity());
    QCOMPARE(layer.getSizeOnDisk(), QStringLiteral("Unknown"));
    QCOMPARE(layer.getSizeGigaPixel(), QStringLiteral("Unknown"));
    QCOMPARE(layer.getResampleType(), XRVJP2kLayer::NearestNeighbour);
    QVERIFY(layer.getFreeCache());
    QVERIFY(layer.getReadRGBA());
    QVERIFY(layer.getProgressive());
    QVERIFY(!layer.getPixmapSmoothing());
    QVERIFY(!layer.getAdaptiveRoam());
    QVERIFY(!layer.getBackingStore());
    QVERIFY(!layer.getDrawOutline());
    QCOMPARE(layer.getOutlineColor(), QColor(0, 255, 255, 255));
    QVERIFY(layer.getBandList().isEmpty());
    QVERIFY(!layer.getIcon().pixmap(32).isNull());
    QVERIFY(qIsNaN(LayerProbe::lastView(layer).x1) && qIsNaN(LayerProbe::lastView(layer).y2));
    QCOMPARE(LayerProbe::lastView(layer).width, 0);
}

void TestLayerSettings::settersOfAFreshLayer()
{
    XRVJP2kLayer layer(nullptr);
    layer.setProgressive(false);
    QVERIFY(layer.getProgressive());
    layer.setTransparency(0.5);
    layer.setTransformClip(50);
    layer.setResampleType(XRVJP2kLayer::Bilinear);
    layer.setHillShade(true);
    layer.setTextureDither(true);
    QCOMPARE(layer.getRefreshCount(), quint64(0));
    QCOMPARE(layer.getTransformClip(), 100);
    QVERIFY(!layer.getHillShade());
    // beginUpdate() takes either argument for a beginning.
    layer.beginUpdate(false);
    QVERIFY(LayerProbe::isUpdating(layer));
    layer.endUpdate();
    QVERIFY(!LayerProbe::isUpdating(layer));
}

void TestLayerSettings::settingsAreRead()
{
    TestFolder::setSetting("OptimizeNearestNeighbour", false);
    TestFolder::setSetting("AdaptiveRendering", true);
    TestFolder::setSetting("OpenProgressive", false);
    TestFolder::setSetting("ResampleType", 1);
    TestFolder::setSetting("UseBackingstore", true);
    TestFolder::setSetting("DrawOutline", true);
    TestFolder::setSetting("OutlineColor", QColor(1, 2, 3, 4));
    XRVJP2kLayer layer(nullptr);
    QVERIFY(layer.getPixmapSmoothing());
    QVERIFY(layer.getAdaptiveRoam());
    QVERIFY(!layer.getProgressive());
    QVERIFY(layer.getBackingStore());
    QVERIFY(layer.getDrawOutline());
    QCOMPARE(layer.getOutlineColor(), QColor(1, 2, 3, 4));
    // The resample method shows once a source is open.
    QVERIFY(layer.setDataSource(folder->makeImage(QStringLiteral("image.jp2"), colourImage(16, 16))));
    QCOMPARE(layer.getResampleType(), XRVJP2kLayer::Bilinear);
}

void TestLayerSettings::outlineColourThatIsNone()
{
    TestFolder::setSetting("OutlineColor", QStringLiteral("#102030"));
    QCOMPARE(XRVJP2kLayer(nullptr).getOutlineColor(), QColor(0x10, 0x20, 0x30));
    TestFolder::setSetting("OutlineColor", QStringList{QStringLiteral("no"), QStringLiteral("colour")});
    QVERIFY(!XRVJP2kLayer(nullptr).getOutlineColor().isValid());
}

void TestLayerSettings::propertyTable()
{
    struct Row
    {
        const char *name;
        const char *type;
        bool writable;
    };
    const QVector<Row> rows = {
        {"SizeOnDisk", "QString", false},
        {"SizeGigaPixel", "QString", false},
        {"XRVPVersion", "int", false},
        {"FileFormatVersion", "int", false},
        {"Contrast", "double", true},
        {"Brightness", "double", true},
        {"BandList", "QVector<qint32>", true},
        {"FreeCache", "bool", true},
        {"PixmapSmoothing", "bool", true},
        {"Progressive", "bool", true},
        {"AdaptiveRoam", "bool", true},
        {"ReadRGBA", "bool", true},
        {"TransformClip", "int", true},
        {"OpacityBandNumber", "int", false},
        {"ResampleMethod", "XRVJP2kLayer::ResampleType", true},
        {"DrawOutline", "bool", true},
        {"OutlineColor", "QColor", true},
        {"BackingStore", "bool", true},
        {"TextureDither", "bool", true},
        {"Jp2QualityLayers", "int", true},
    };
    const QMetaObject &meta = XRVJP2kLayer::staticMetaObject;
    QCOMPARE(meta.className(), "Korvane::XRVJP2kLayer");
    QCOMPARE(meta.propertyCount() - meta.propertyOffset(), rows.size());
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());
    for (int i = 0; i < rows.size(); ++i) {
        const QMetaProperty property = meta.property(meta.propertyOffset() + i);
        QCOMPARE(property.name(), rows[i].name);
        QCOMPARE(property.typeName(), rows[i].type);
        QVERIFY(property.isReadable());
        QCOMPARE(property.isWritable(), rows[i].writable);
    }
}

void TestLayerSettings::propertiesAreReadAndWritten()
{
    const auto layer = openedLayer();
    QVERIFY(layer->setProperty("ResampleMethod", QVariant::fromValue(XRVJP2kLayer::Bilinear)));
    QCOMPARE(layer->property("ResampleMethod").value<XRVJP2kLayer::ResampleType>(), XRVJP2kLayer::Bilinear);
    QVERIFY(layer->setProperty("BandList", QVariant::fromValue(QVector<int>{1, 1, 1})));
    QCOMPARE(layer->property("BandList").value<QVector<int>>(), QVector<int>({1, 1, 1}));
    QVERIFY(layer->setProperty("Contrast", 1.5));
    QCOMPARE(layer->getContrast(), 1.5);
    QCOMPARE(layer->property("SizeGigaPixel").toString(), QStringLiteral("< 1 GP"));
}

void TestLayerSettings::interfacesByName()
{
    XRVJP2kLayer layer(nullptr);
    QObject *object = &layer;
    QCOMPARE(object->qt_metacast("Korvane::XRVJP2kLayer"), static_cast<void *>(&layer));
    QVERIFY(qobject_cast<Map::Layer *>(object));
    QVERIFY(dynamic_cast<Map::IRasterLayerHistogram *>(object));
}

void TestLayerSettings::redrawsOfSetters_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<int>("refreshes");
    QTest::addColumn<int>("views");
    using Layer = XRVJP2kLayer;
    QTest::newRow("transparency") << Change([](Layer &l) { l.setTransparency(0.5); }) << 0 << 0;
    QTest::newRow("contrast") << Change([](Layer &l) { l.setContrast(0.5); }) << 0 << 0;
    QTest::newRow("brightness") << Change([](Layer &l) { l.setBrightness(0.5); }) << 0 << 0;
    QTest::newRow("hill shade") << Change([](Layer &l) { l.setHillShade(true); }) << 0 << 0;
    QTest::newRow("free cache") << Change([](Layer &l) { l.setFreeCache(false); }) << 0 << 0;
    QTest::newRow("adaptive roam") << Change([](Layer &l) { l.setAdaptiveRoam(true); }) << 0 << 0;
    QTest::newRow("read method") << Change([](Layer &l) { l.setReadRGBA(false); }) << 0 << 0;
    QTest::newRow("visible") << Change([](Layer &l) { l.setVisible(true); }) << 1 << 0;
    QTest::newRow("smoothing") << Change([](Layer &l) { l.setPixmapSmoothing(true); }) << 1 << 0;
    QTest::newRow("outline") << Change([](Layer &l) { l.setDrawOutline(true); }) << 1 << 0;
    QTest::newRow("outline colour") << Change([](Layer &l) { l.setOutlineColor(Qt::red); }) << 1 << 0;
    QTest::newRow("band list") << Change([](Layer &l) { l.setBandList({0, 0, 0}); }) << 1 << 1;
    QTest::newRow("transform clip") << Change([](Layer &l) { l.setTransformClip(90); }) << 1 << 1;
    QTest::newRow("dither") << Change([](Layer &l) { l.setTextureDither(true); }) << 1 << 1;
    QTest::newRow("quality layers") << Change([](Layer &l) { l.setJp2QualityLayers(1); }) << 1 << 1;
    QTest::newRow("resample method") << Change([](Layer &l) { l.setResampleType(Layer::Bilinear); }) << 0 << 1;
    QTest::newRow("resample method in force")
        << Change([](Layer &l) { l.setResampleType(Layer::NearestNeighbour); }) << 0 << 0;
    QTest::newRow("progressive in force") << Change([](Layer &l) { l.setProgressive(false); }) << 0 << 0;
}

/// Number of views set so far.
static quint64 viewsOf(const XRVJP2kLayer &layer)
{
    return layer.getFile()->GetSetViewInfo().nGeneration;
}

void TestLayerSettings::redrawsOfSetters()
{
    QFETCH(Change, change);
    TestFolder::setSetting("OpenProgressive", false); // a blocking view asks for no redraw by itself
    const auto layer = openedLayer();
    viewWhole(*layer);
    QVERIFY(LayerProbe::isViewSet(*layer));
    const quint64 refreshesBefore = layer->getRefreshCount();
    const quint64 viewsBefore = viewsOf(*layer);
    change(*layer);
    QTEST(int(layer->getRefreshCount() - refreshesBefore), "refreshes");
    QTEST(int(viewsOf(*layer) - viewsBefore), "views");
}

void TestLayerSettings::backingRendererFollows()
{
    TestFolder::setSetting("UseBackingstore", true);
    const auto layer = openedLayer();
    const XRVJP2kRenderer *backing = LayerProbe::backingRenderer(*layer);
    QVERIFY(backing);
    QVERIFY(!backing->IsProgressive());
    layer->setTransparency(0.25);
    layer->setContrast(0.5);
    layer->setBrightness(0.75);
    layer->setTransformClip(90);
    layer->setPixmapSmoothing(true);
    layer->setResampleType(XRVJP2kLayer::Bilinear);
    QCOMPARE(backing->getTransparency(), 0.25);
    QCOMPARE(backing->getContrast(), 0.5);
    QCOMPARE(backing->getBrightness(), 0.75);
    QCOMPARE(backing->getTransformClip(), 90);
    QVERIFY(LayerProbe::isSmoothing(*backing));
    QCOMPARE(int(backing->ParametersDecompress().GetResampleMethod()), 1);
    // These are the main renderer's alone.
    layer->setReadRGBA(false);
    layer->setTextureDither(true);
    layer->setHillShade(true);
    layer->setAzumith(10);
    QVERIFY(backing->getReadRGBA());
    QVERIFY(!backing->ParametersDecompress().IsReaderDitherEnabled());
    QVERIFY(!backing->getHillShade());
    QCOMPARE(backing->getAzumith(), 45.0);
}

void TestLayerSettings::refreshWithoutAView()
{
    const auto layer = openedLayer();
    const quint64 views = viewsOf(*layer);
    const quint64 refreshes = layer->getRefreshCount();
    layer->setBandList({2, 1, 0});
    QCOMPARE(layer->getRefreshCount(), refreshes + 1);
    QCOMPARE(viewsOf(*layer), views);
}

void TestLayerSettings::savesNothingOfItsOwn()
{
    const auto layer = openedLayer();
    layer->setResampleType(XRVJP2kLayer::Bilinear);
    layer->setBandList({2, 1, 0});
    QDomDocument document;
    QDomElement byLayer = document.createElement(QStringLiteral("layer"));
    QDomElement byHost = document.createElement(QStringLiteral("layer"));
    document.appendChild(byLayer);
    QVERIFY(layer->writeXML(byLayer, document));
    QVERIFY(layer->Map::Layer::writeXML(byHost, document));
    const auto text = [](const QDomElement &element) {
        QString result;
        QTextStream stream(&result);
        element.save(stream, 1);
        return result;
    };
    QCOMPARE(text(byLayer), text(byHost));

    XRVJP2kLayer restored(nullptr);
    QDir projectFolder(folder->path(QString()));
    QString error;
    QVERIFY2(restored.readXML(byLayer, projectFolder, &error), qPrintable(error));
    QCOMPARE(restored.getDataSource(), layer->getDataSource());
    QCOMPARE(restored.getUid(), layer->getUid());
    // The host restores properties; all of them have to be of types that it can write down.
    QCOMPARE(restored.getResampleType(), XRVJP2kLayer::Bilinear);
    QCOMPARE(restored.getBandList(), QVector<int>({2, 1, 0}));
}

void TestLayerSettings::clientHearsOfRefresh()
{
    struct Client : Map::IRendererClient
    {
        void layerRefreshed(Map::RasterLayer *, const QRectF &) override { ++calls; }
        int calls = 0;
    } client;
    XRVJP2kLayer layer(&client);
    layer.setDrawOutline(true);
    QTRY_COMPARE(client.calls, 1);
}

QTEST_MAIN(TestLayerSettings)
#include "tst_layersettings.moc"
