#include "layerprobe.h"
#include "testimages.h"

#include <QDGui/geopainter.h>

#include <QtTest>

#include <limits>

using namespace Korvane;

/// Views as the host asks for them, and what is painted then.
class TestLayerView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void boundsWithoutASource();
    void viewIsClippedAndSnapped();
    void viewOutsideClearsThePicture();
    void adaptiveRoam_data();
    void adaptiveRoam();
    void everyCallIsANewView();
    void noViewIsSetForNonsense();
    void blockingPicture();
    void progressivePicture();
    void paintingOrder();
    void outline();
    void partlyTransparentLayerHidesBacking();
    void nothingWithoutASource();

private:
    void open(int width, int height);
    std::unique_ptr<TestFolder> folder;
    std::unique_ptr<XRVJP2kLayer> layer;
};

void TestLayerView::init()
{
    folder = std::make_unique<TestFolder>();
    TestFolder::setSetting("OpenProgressive", false);
}

void TestLayerView::cleanup()
{
    layer.reset();
    folder.reset();
}

void TestLayerView::open(int width, int height)
{
    layer = std::make_unique<XRVJP2kLayer>(nullptr);
    const QString file = folder->makeImage(QStringLiteral("image.jp2"), colourImage(width, height));
    QVERIFY2(layer->setDataSource(file), qPrintable(layer->getLastError()));
}

void TestLayerView::boundsWithoutASource()
{
    XRVJP2kLayer fresh(nullptr);
    QCOMPARE(fresh.getBounds(), QRectF(-180, 90, 360, -180));
    fresh.setView(100, 100, 0, 0, 1, -1);
    QVERIFY(!LayerProbe::isViewSet(fresh));
    QCOMPARE(LayerProbe::lastView(fresh).width, 0);
}

void TestLayerView::viewIsClippedAndSnapped()
{
    open(100, 80);
    QCOMPARE(layer->getBounds(), QRectF(0, 0, 100, -80));
    layer->setView(1000, 800, -50, 0, 50, -80);
    const PLKSetViewInfo view = layer->getFile()->GetSetViewInfo();
    QCOMPARE(QSize(int(view.nSizeX), int(view.nSizeY)), QSize(500, 800));
    QCOMPARE(view.fTopLeftX, 0.0);
    QCOMPARE(view.fTopLeftY, 0.0);
    QCOMPARE(view.fBottomRightX, 50.0);
    QCOMPARE(view.fBottomRightY, -80.0);
    QCOMPARE(view.nBands, 3U);
    const auto last = LayerProbe::lastView(*layer);
    QCOMPARE(QSize(last.width, last.height), QSize(500, 800));
    QCOMPARE(last.x2, 50.0);
}

void TestLayerView::viewOutsideClearsThePicture()
{
    TestFolder::setSetting("UseBackingstore", true);
    open(100, 80);
    viewWhole(*layer);
    paintedWhole(*layer);
    QVERIFY(LayerProbe::image(*LayerProbe::renderer(*layer)));
    QVERIFY(LayerProbe::image(*LayerProbe::backingRenderer(*layer)));
    const auto before = LayerProbe::lastView(*layer);
    layer->setView(100, 80, 200, 0, 300, -80);
    QVERIFY(!LayerProbe::image(*LayerProbe::renderer(*layer)));
    QVERIFY(!LayerProbe::image(*LayerProbe::backingRenderer(*layer)));
    QVERIFY(LayerProbe::isViewSet(*layer));
    QCOMPARE(LayerProbe::lastView(*layer).width, before.width);
}

void TestLayerView::adaptiveRoam_data()
{
    QTest::addColumn<bool>("adaptive");
    QTest::addColumn<bool>("progressive");
    QTest::addColumn<bool>("updating");
    QTest::addColumn<QSize>("main");
    QTest::addColumn<QSize>("backing");
    QTest::newRow("halved") << true << false << true << QSize(500, 400) << QSize(125, 100);
    QTest::newRow("not updating") << true << false << false << QSize(1001, 801) << QSize(250, 200);
    QTest::newRow("progressive") << true << true << true << QSize(1001, 801) << QSize(250, 200);
    QTest::newRow("switched off") << false << false << true << QSize(1001, 801) << QSize(250, 200);
}

void TestLayerView::adaptiveRoam()
{
    QFETCH(bool, adaptive);
    QFETCH(bool, progressive);
    QFETCH(bool, updating);
    TestFolder::setSetting("AdaptiveRendering", adaptive);
    TestFolder::setSetting("OpenProgressive", progressive);
    TestFolder::setSetting("UseBackingstore", true);
    open(100, 80);
    if (updating)
        layer->beginUpdate(false);
    layer->setView(1001, 801, 0, 0, 100, -80);
    const PLKSetViewInfo main = layer->getFile()->GetSetViewInfo();
    const PLKSetViewInfo backing = LayerProbe::backingRenderer(*layer)->GetSetViewInfo();
    QTEST(QSize(int(main.nSizeX), int(main.nSizeY)), "main");
    QTEST(QSize(int(backing.nSizeX), int(backing.nSizeY)), "backing");
    QCOMPARE(backing.fBottomRightX, main.fBottomRightX);
    QCOMPARE(backing.fTopLeftY, main.fTopLeftY);
}

void TestLayerView::everyCallIsANewView()
{
    open(64, 64);
    viewWhole(*layer);
    const quint64 first = layer->getFile()->GetSetViewInfo().nGeneration;
    viewWhole(*layer);
    QVERIFY(layer->getFile()->GetSetViewInfo().nGeneration > first);
}

void TestLayerView::noViewIsSetForNonsense()
{
    open(64, 64);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    layer->setView(64, 64, 10, -10, 10, -10);
    layer->setView(64, 64, nan, nan, nan, nan);
    layer->setView(-5, -5, 0, 0, 64, -64);
    layer->setView(0, 0, 0, 0, 64, -64);
    QVERIFY(!layer->getFile()->IsViewSet());
    QVERIFY(!LayerProbe::isViewSet(*layer));
}

void TestLayerView::blockingPicture()
{
    open(64, 48);
    viewWhole(*layer);
    const QImage picture = paintedWhole(*layer);
    QCOMPARE(picture.pixel(0, 0), colourOf(0, 0));
    QCOMPARE(picture.pixel(63, 0), colourOf(63, 0));
    QCOMPARE(picture.pixel(17, 47), colourOf(17, 47));
    // Painting again without a new view shows the same.
    QCOMPARE(paintedWhole(*layer), picture);
    QCOMPARE(int(layer->getPercentComplete()), 100);
}

void TestLayerView::progressivePicture()
{
    TestFolder::setSetting("OpenProgressive", true);
    open(64, 48);
    viewWhole(*layer);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QTRY_VERIFY(layer->getRefreshCount() >= 1);
    QTRY_COMPARE(paintedWhole(*layer).pixel(33, 21), colourOf(33, 21));
    QCOMPARE(paintedWhole(*layer).pixel(63, 47), colourOf(63, 47));
}

void TestLayerView::paintingOrder()
{
    TestFolder::setSetting("UseBackingstore", true);
    TestFolder::setSetting("DrawOutline", true);
    open(40, 40);
    // The backing picture covers all, the main one the left half.
    const QColor green(Qt::green);
    const QColor red(Qt::red);
    LayerProbe::setImage(*LayerProbe::backingRenderer(*layer),
                         GeoImage(10, 10, 0, 0, 40, -40, QImage::Format_ARGB32, &green));
    LayerProbe::setImage(*LayerProbe::renderer(*layer), GeoImage(20, 40, 0, 0, 20, -40, QImage::Format_ARGB32, &red));
    const QImage picture = paintedWhole(*layer);
    QCOMPARE(QColor(picture.pixel(10, 20)), red);
    QCOMPARE(QColor(picture.pixel(30, 20)), green);
    QCOMPARE(QColor(picture.pixel(0, 20)), QColor(Qt::cyan));
    QCOMPARE(QColor(picture.pixel(39, 20)), QColor(Qt::cyan));
}

void TestLayerView::outline()
{
    open(40, 40);
    LayerProbe::renderer(*layer)->clearImage();
    layer->setDrawOutline(true);
    layer->setOutlineColor(Qt::magenta);
    const QImage picture = paintedWhole(*layer);
    QCOMPARE(QColor(picture.pixel(0, 0)), QColor(Qt::magenta));
    QCOMPARE(QColor(picture.pixel(39, 39)), QColor(Qt::magenta));
    QCOMPARE(QColor(picture.pixel(20, 20)), QColor(Qt::white));

    // The painter's own pen is untouched.
    QImage canvas(40, 40, QImage::Format_ARGB32);
    const QRectF world = layer->getBounds();
    const QRect device = canvas.rect();
    GeoPainter painter(&canvas, world, device);
    painter.setPen(Qt::yellow);
    layer->paint(painter, &world, &device);
    QCOMPARE(painter.pen().color(), QColor(Qt::yellow));
    QCOMPARE(painter.opacity(), 1.0);
}

void TestLayerView::partlyTransparentLayerHidesBacking()
{
    TestFolder::setSetting("UseBackingstore", true);
    open(40, 40);
    const QColor green(Qt::green);
    LayerProbe::setImage(*LayerProbe::backingRenderer(*layer),
                         GeoImage(10, 10, 0, 0, 40, -40, QImage::Format_ARGB32, &green));
    layer->setTransparency(0.5);
    QCOMPARE(QColor(paintedWhole(*layer).pixel(20, 20)), QColor(Qt::white));
}

void TestLayerView::nothingWithoutASource()
{
    XRVJP2kLayer fresh(nullptr);
    fresh.setDrawOutline(true);
    QImage canvas(10, 10, QImage::Format_ARGB32);
    canvas.fill(Qt::white);
    const QRectF world(0, 0, 10, -10);
    const QRect device = canvas.rect();
    GeoPainter painter(&canvas, world, device);
    fresh.paint(painter, &world, &device);
    painter.end();
    QCOMPARE(QColor(canvas.pixel(0, 0)), QColor(Qt::white));
}

QTEST_MAIN(TestLayerView)
#include "tst_layerview.moc"
