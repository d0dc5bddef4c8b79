#include "layertest.h"

#include <QDGui/geopainter.h>

#include <QtTest>

#include <limits>

using namespace Korvane;

using Setter = void (XRVJP2kRenderer::*)(double);
using Getter = double (XRVJP2kRenderer::*)() const;
Q_DECLARE_METATYPE(Setter)
Q_DECLARE_METATYPE(Getter)

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

} // namespace

class TestRenderer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void clamps_data();
    void clamps();
    void azimuthIsComparedWithBrightness();
    void qualityLayersOutOfRange();
    void defaultClip_data();
    void defaultClip();
    void opacityBandIsLeftOutOfTheStretch();
    void clipIsAByte();
    void readMethodsAgree_data();
    void readMethodsAgree();
    void staleAlphaDoesNotShow();
    void readsThatCannotBe();
    void cancelKeepsThePicture();
    void toneMapping();
    void hillShade_data();
    void hillShade();
    void openErrorsAreHandedBack();

private:
    XRVJP2kRenderer &open(const jp2maker::Options &options);
    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kLayer> layer;
};

void TestRenderer::init()
{
    folder = std::make_unique<TestFolder>();
    TestFolder::setSetting("OpenProgressive", false);
    layer = std::make_unique<XRVJP2kLayer>(nullptr);
}

void TestRenderer::cleanup()
{
    layer.reset();
    folder.reset();
}

XRVJP2kRenderer &TestRenderer::open(const jp2maker::Options &options)
{
    layer = openLayer(folder->makeImage(QStringLiteral("image.jp2"), options));
    return *rendererOf(*layer);
}

void TestRenderer::clamps_data()
{
    QTest::addColumn<Setter>("setter");
    QTest::addColumn<Getter>("getter");
    QTest::addColumn<double>("initial");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::newRow("transparency") << Setter(&XRVJP2kRenderer::setTransparency)
                                  << Getter(&XRVJP2kRenderer::getTransparency) << 1.0 << 0.0 << 1.0;
    QTest::newRow("contrast") << Setter(&XRVJP2kRenderer::setContrast) << Getter(&XRVJP2kRenderer::getContrast) << 1.0
                              << -2.0 << 2.0;
    QTest::newRow("brightness") << Setter(&XRVJP2kRenderer::setBrightness) << Getter(&XRVJP2kRenderer::getBrightness)
                                << 1.0 << -2.0 << 2.0;
    QTest::newRow("azimuth") << Setter(&XRVJP2kRenderer::setAzumith) << Getter(&XRVJP2kRenderer::getAzumith) << 45.0
                             << 0.0 << 360.0;
    QTest::newRow("elevation") << Setter(&XRVJP2kRenderer::setElevation) << Getter(&XRVJP2kRenderer::getElevation)
                               << 45.0 << 0.0 << 90.0;
}

void TestRenderer::clamps()
{
    QFETCH(Setter, setter);
    QFETCH(Getter, getter);
    QFETCH(double, low);
    QFETCH(double, high);
    XRVJP2kRenderer renderer(layer.get());
    QTEST((renderer.*getter)(), "initial");
    (renderer.*setter)(high + 5);
    QCOMPARE((renderer.*getter)(), high);
    (renderer.*setter)(low - 5);
    QCOMPARE((renderer.*getter)(), low);
    (renderer.*setter)((low + high) / 2);
    QCOMPARE((renderer.*getter)(), (low + high) / 2);
    (renderer.*setter)(kNan);
    QVERIFY(qIsNaN((renderer.*getter)()));
}

void TestRenderer::azimuthIsComparedWithBrightness()
{
    XRVJP2kRenderer renderer(layer.get());
    renderer.setBrightness(0.5);
    renderer.setAzumith(0.5);
    QCOMPARE(renderer.getAzumith(), 45.0);
    renderer.setAzumith(0.25);
    QCOMPARE(renderer.getAzumith(), 0.25);
}

void TestRenderer::qualityLayersOutOfRange()
{
    jp2maker::Options options = colourImage(64, 64);
    options.layerRates = {20, 10, 0};
    XRVJP2kRenderer &renderer = open(options);
    for (const int layers : {0, -1, 4}) {
        renderer.setJp2QualityLayers(layers);
        QCOMPARE(renderer.getJp2QualityLayers(), 3);
    }
    renderer.setJp2QualityLayers(2);
    QCOMPARE(renderer.getJp2QualityLayers(), 2);
    QCOMPARE(renderer.ParametersJp2().Decompress().GetLayersToDecode(), 2);
}

void TestRenderer::defaultClip_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<QVariant>("setting");
    QTest::addColumn<int>("clip");
    QTest::newRow("8 bits") << 8 << false << QVariant(50) << 100;
    QTest::newRow("8 bits signed") << 8 << true << QVariant(50) << 100;
    QTest::newRow("12 bits, no setting") << 12 << false << QVariant() << 99;
    QTest::newRow("16 bits, setting") << 16 << false << QVariant(80) << 80;
    QTest::newRow("16 bits signed, setting beyond a byte") << 16 << true << QVariant(256 + 70) << 70;
}

void TestRenderer::defaultClip()
{
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(QVariant, setting);
    if (setting.isValid())
        TestFolder::setSetting("DefaultClipTransform", setting);
    jp2maker::Options options;
    options.components = {{bits, isSigned, 1, 1}};
    QTEST(open(options).getTransformClip(), "clip");
}

void TestRenderer::opacityBandIsLeftOutOfTheStretch()
{
    jp2maker::Options options;
    options.width = options.height = 16;
    options.components.assign(4, {16, false, 1, 1});
    options.opacityLast = true;
    // Visible colours from 1000 to 1007, an opacity of which the half is 32767: stretched with the colours it would be
    // lost.
    options.cell = [](int component, int x, int) { return component == 3 ? (x < 8 ? 65535 : 0) : 1000 + x; };
    TestFolder::setSetting("DefaultClipTransform", 100);
    open(options);
    QCOMPARE(layer->getBandList(), QVector<int>({0, 1, 2, 3}));
    viewWhole(*layer);
    const QImage picture = paintedWhole(*layer);
    QCOMPARE(qRed(picture.pixel(0, 3)), 0);
    QCOMPARE(qRed(picture.pixel(15, 3)), 255); // transparent: the white behind it
    QVERIFY(qAbs(qRed(picture.pixel(4, 3)) - 255 * 4 / 7) <= 17);
}

void TestRenderer::clipIsAByte()
{
    open(colourImage(16, 16));
    layer->setTransformClip(256 + 44);
    QCOMPARE(layer->getTransformClip(), 44);
    layer->setTransformClip(100);
    viewWhole(*layer);
    QCOMPARE(paintedWhole(*layer).pixel(9, 5), colourOf(9, 5)); // no stretch any more
}

void TestRenderer::readMethodsAgree_data()
{
    QTest::addColumn<QVector<int>>("bands");
    QTest::newRow("grey") << QVector<int>{1, 1, 1};
    QTest::newRow("colour") << QVector<int>{0, 1, 2};
    QTest::newRow("colour and opacity") << QVector<int>{2, 1, 0, 3};
}

void TestRenderer::readMethodsAgree()
{
    QFETCH(QVector<int>, bands);
    jp2maker::Options options;
    options.width = 30;
    options.height = 20;
    options.components.assign(4, jp2maker::Component());
    options.opacityLast = true;
    open(options);
    layer->setBandList(bands);
    viewWhole(*layer);
    const QImage packed = paintedWhole(*layer);
    layer->setReadRGBA(false);
    viewWhole(*layer);
    const QImage byBand = paintedWhole(*layer);
    QCOMPARE(byBand, packed);
    QVERIFY(packed.pixel(3, 3) != packed.pixel(25, 15));
}

void TestRenderer::staleAlphaDoesNotShow()
{
    jp2maker::Options options;
    options.components.assign(4, jp2maker::Component());
    options.opacityLast = true;
    options.cell = [](int component, int, int) { return component == 3 ? 0 : 90; };
    open(options);
    layer->setReadRGBA(false);
    viewWhole(*layer);
    QCOMPARE(QColor(paintedWhole(*layer).pixel(5, 5)), QColor(Qt::white));
    layer->setBandList({0, 1, 2});
    QCOMPARE(QColor(paintedWhole(*layer).pixel(5, 5)), QColor(90, 90, 90));
}

void TestRenderer::readsThatCannotBe()
{
    XRVJP2kRenderer closed(layer.get());
    QCOMPARE(closed.readView(10, 10, 0, 0, 10, -10), PLK_READ_FAILED);
    XRVJP2kRenderer &renderer = open(colourImage(16, 16));
    QCOMPARE(renderer.readView(0, 10, 0, 0, 10, -10), PLK_READ_FAILED);
    QCOMPARE(renderer.readView(10, 0, 0, 0, 10, -10), PLK_READ_FAILED);
    // An image that cannot be made is not an error.
    QCOMPARE(renderer.readView(65535, 65535, 0, 0, 10, -10), PLK_READ_SUCCESS);
    renderer.setReadRGBA(false);
    QCOMPARE(renderer.readView(0, 10, 0, 0, 10, -10), PLK_READ_SUCCESS);
    // Without a view the lines fail.
    QCOMPARE(renderer.readView(10, 10, 0, 0, 10, -10), PLK_READ_FAILED);
    QCOMPARE(QColor(paintedWhole(*layer).pixel(5, 5)), QColor(Qt::white));
}

void TestRenderer::cancelKeepsThePicture()
{
    XRVJP2kRenderer &renderer = open(colourImage(16, 16));
    viewWhole(*layer);
    QCOMPARE(paintedWhole(*layer).pixel(9, 5), qRgb(9, 5, 50));
    for (const bool packed : {true, false}) {
        renderer.setReadRGBA(packed);
        layer->setBandList({2, 2, 2});
        renderer.cancelRead();
        QCOMPARE(renderer.readView(16, 16, 0, 0, 16, -16), PLK_READ_SUCCESS);
        renderer.cancelRead(); // painting reads too
        QCOMPARE(paintedWhole(*layer).pixel(9, 5), qRgb(9, 5, 50));
        QCOMPARE(paintedWhole(*layer).pixel(9, 5), qRgb(50, 50, 50));
        layer->setBandList({0, 1, 2});
        paintedWhole(*layer);
    }
}

void TestRenderer::toneMapping()
{
    open(colourImage(64, 64));
    viewWhole(*layer);
    layer->setBrightness(1.5);
    QCOMPARE(paintedWhole(*layer).pixel(10, 20), qRgb(137, 147, 177)); // 127.5 more, truncated
    layer->setBrightness(2.0);
    QCOMPARE(QColor(paintedWhole(*layer, Qt::black).pixel(10, 20)), QColor(Qt::white));
    layer->setBrightness(1.0);
    layer->setContrast(-1.0);
    QCOMPARE(paintedWhole(*layer).pixel(10, 20), qRgb(245, 235, 205));
    // A hill shade waits until the tones are neutral.
    layer->setHillShade(true);
    QCOMPARE(paintedWhole(*layer).pixel(10, 20), qRgb(245, 235, 205));
    layer->setContrast(kNan);
    QCOMPARE(QColor(paintedWhole(*layer).pixel(10, 20)), QColor(Qt::black));
}

void TestRenderer::hillShade_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("transparency");
    QTest::addColumn<QRect>("veiled");
    QTest::addColumn<int>("grey"); // of the veil over white
    QTest::newRow("opaque") << QSize(10, 8) << 1.0 << QRect(QPoint(1, 1), QPoint(7, 5)) << 0;
    // Alpha trunc(0.5 * 255) = 127, drawn with half the opacity: 255 - 127 / 2.
    QTest::newRow("half") << QSize(10, 8) << 0.5 << QRect(QPoint(1, 1), QPoint(7, 5)) << 192;
    // Alpha trunc(254.745) = 254, drawn with 255 of 256 parts: 255 - 254 * 255 / 256.
    QTest::newRow("nearly opaque") << QSize(10, 8) << 0.999 << QRect(QPoint(1, 1), QPoint(7, 5)) << 2;
    QTest::newRow("smallest veil") << QSize(4, 4) << 1.0 << QRect(1, 1, 1, 1) << 0;
    QTest::newRow("three by three") << QSize(3, 3) << 1.0 << QRect() << 0;
    QTest::newRow("one by one") << QSize(1, 1) << 1.0 << QRect() << 0;
    QTest::newRow("not a number") << QSize(10, 8) << kNan << QRect() << 0;
}

void TestRenderer::hillShade()
{
    QFETCH(QSize, size);
    QFETCH(double, transparency);
    QFETCH(QRect, veiled);
    QFETCH(int, grey);
    jp2maker::Options options = colourImage(size.width(), size.height());
    options.levels = 0;
    open(options);
    viewWhole(*layer);
    layer->setHillShade(true);
    layer->setTransparency(transparency);
    const QImage picture = paintedWhole(*layer);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            QCOMPARE(qRed(picture.pixel(x, y)), veiled.contains(x, y) ? grey : 255);
        }
    }
}

void TestRenderer::openErrorsAreHandedBack()
{
    XRVJP2kRenderer renderer(layer.get());
    const PLK::CError error = renderer.openFile(folder->writeText(QStringLiteral("a.jp2"), "not an image"), true);
    QVERIFY(error.GetErrorNumber() != 0);
    QVERIFY(*error.GetErrorMessage());
    QCOMPARE(renderer.getJp2QualityLayers(), -1);
    QVERIFY(!renderer.getRPCData());
    QVERIFY(!renderer.getClientStatistics());
    QImage canvas(4, 4, QImage::Format_ARGB32);
    QPainter painter(&canvas);
    renderer.paint(painter, QRectF(0, 0, 4, -4), canvas.rect());
}

QTEST_MAIN(TestRenderer)
#include "tst_renderer.moc"
