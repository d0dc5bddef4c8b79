#include "layertest.h"

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

    void settingsAreRead_data();
    void settingsAreRead();
    void propertyTable();
    void redrawsOfSetters_data();
    void redrawsOfSetters();
    void backingRendererFollows();
    void savesNothingOfItsOwn();
    void clientHearsOfRefresh();

private:
    QString image() const { return folder->makeImage(QStringLiteral("image.jp2"), colourImage(64, 48)); }
    std::unique_ptr<TestFolder> folder;
};

void TestLayerSettings::settingsAreRead_data()
{
    QTest::addColumn<QByteArray>("property");
    QTest::addColumn<QVariant>("usual");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QVariant>("expected");
    const auto row = [](const char *key, const char *property, QVariant usual, QVariant stored, QVariant expected) {
        QTest::newRow(key) << QByteArray(property) << usual << stored << expected;
    };
    row("OptimizeNearestNeighbour", "PixmapSmoothing", false, false, true);
    row("AdaptiveRendering", "AdaptiveRoam", false, true, true);
    row("OpenProgressive", "Progressive", true, false, false);
    row("UseBackingstore", "BackingStore", false, true, true);
    row("DrawOutline", "DrawOutline", false, true, true);
    row("OutlineColor", "OutlineColor", QColor(0, 255, 255), QColor(1, 2, 3, 4), QColor(1, 2, 3, 4));
    // The resample method shows once a source is open.
    row("ResampleType", "ResampleMethod", 0, 1, 1);
}

void TestLayerSettings::settingsAreRead()
{
    QFETCH(QByteArray, property);
    QFETCH(QVariant, stored);
    const auto value = [&] {
        const QVariant found = openLayer(image())->property(property.constData());
        return found.canConvert<XRVJP2kLayer::ResampleType>() ? found.value<XRVJP2kLayer::ResampleType>() : found;
    };
    QTEST(value(), "usual");
    TestFolder::setSetting(QTest::currentDataTag(), stored);
    QTEST(value(), "expected");
}

/// Projects keep them under these names.
void TestLayerSettings::propertyTable()
{
    const QMetaObject &meta = XRVJP2kLayer::staticMetaObject;
    QCOMPARE(meta.className(), "Korvane::XRVJP2kLayer");
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QStringList found;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        found.append(QStringLiteral("%1 %2").arg(QLatin1String(property.typeName()), QLatin1String(property.name())) +
                     (property.isWritable() ? QString() : QStringLiteral(" const")));
    }
    QCOMPARE(found.join(QStringLiteral(", ")),
             QStringLiteral(
                 "QString SizeOnDisk const, QString SizeGigaPixel const, int XRVPVersion const, "
                 "int FileFormatVersion const, double Contrast, double Brightness, QVector<qint32> BandList, "
                 "bool FreeCache, bool PixmapSmoothing, bool Progressive, bool AdaptiveRoam, bool ReadRGBA, "
                 "int TransformClip, int OpacityBandNumber const, XRVJP2kLayer::ResampleType ResampleMethod, "
                 "bool DrawOutline, QColor OutlineColor, bool BackingStore, bool TextureDither, int Jp2QualityLayers"));
}

void TestLayerSettings::redrawsOfSetters_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<int>("refreshes");
    QTest::addColumn<int>("views");
    using Layer = XRVJP2kLayer;
    const auto row = [](const char *name, const Change &change, int refreshes, int views) {
        QTest::newRow(name) << change << refreshes << views;
    };
    row(
        "transparency", [](Layer &l) { l.setTransparency(0.5); }, 0, 0);
    row(
        "contrast", [](Layer &l) { l.setContrast(0.5); }, 0, 0);
    row(
        "brightness", [](Layer &l) { l.setBrightness(0.5); }, 0, 0);
    row(
        "hill shade", [](Layer &l) { l.setHillShade(true); }, 0, 0);
    row(
        "free cache", [](Layer &l) { l.setFreeCache(false); }, 0, 0);
    row(
        "adaptive roam", [](Layer &l) { l.setAdaptiveRoam(true); }, 0, 0);
    row(
        "read method", [](Layer &l) { l.setReadRGBA(false); }, 0, 0);
    row(
        "visible", [](Layer &l) { l.setVisible(true); }, 1, 0);
    row(
        "smoothing", [](Layer &l) { l.setPixmapSmoothing(true); }, 1, 0);
    row(
        "outline", [](Layer &l) { l.setDrawOutline(true); }, 1, 0);
    row(
        "outline colour", [](Layer &l) { l.setOutlineColor(Qt::red); }, 1, 0);
    row(
        "band list",
        [](Layer &l) {
            l.setBandList({0, 0, 0});
        },
        1, 1);
    row(
        "transform clip", [](Layer &l) { l.setTransformClip(90); }, 1, 1);
    row(
        "dither", [](Layer &l) { l.setTextureDither(true); }, 1, 1);
    row(
        "quality layers", [](Layer &l) { l.setJp2QualityLayers(1); }, 1, 1);
    row(
        "resample method", [](Layer &l) { l.setResampleType(Layer::Bilinear); }, 0, 1);
    row(
        "resample method in force", [](Layer &l) { l.setResampleType(Layer::NearestNeighbour); }, 0, 0);
    row(
        "progressive in force", [](Layer &l) { l.setProgressive(false); }, 0, 0);
}

void TestLayerSettings::redrawsOfSetters()
{
    QFETCH(Change, change);
    TestFolder::setSetting("OpenProgressive", false); // a blocking view asks for no redraw by itself
    const auto layer = openLayer(image());
    viewWhole(*layer);
    const quint64 refreshesBefore = layer->getRefreshCount();
    const quint64 viewsBefore = layer->getFile()->GetSetViewInfo().nGeneration;
    change(*layer);
    QTEST(int(layer->getRefreshCount() - refreshesBefore), "refreshes");
    QTEST(int(layer->getFile()->GetSetViewInfo().nGeneration - viewsBefore), "views");
    XRVJP2kLayer fresh(nullptr);
    change(fresh); // needs no image
}

void TestLayerSettings::backingRendererFollows()
{
    TestFolder::setSetting("UseBackingstore", true);
    const auto layer = openLayer(image());
    const XRVJP2kRenderer *backing = backingOf(*layer);
    QVERIFY(backing && !backing->IsProgressive());
    layer->setTransparency(0.25);
    layer->setContrast(0.5);
    layer->setBrightness(0.75);
    layer->setTransformClip(90);
    layer->setResampleType(XRVJP2kLayer::Bilinear);
    QCOMPARE(backing->getTransparency(), 0.25);
    QCOMPARE(backing->getContrast(), 0.5);
    QCOMPARE(backing->getBrightness(), 0.75);
    QCOMPARE(backing->getTransformClip(), 90);
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

void TestLayerSettings::savesNothingOfItsOwn()
{
    const auto layer = openLayer(image());
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
    QDir projectFolder(folder->path());
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
