#include "layertest.h"

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

    void viewIsClippedAndSnapped();
    void viewOutsideClearsThePicture();
    void adaptiveRoam_data();
    void adaptiveRoam();
    void noViewIsSetForNonsense();
    void blockingPicture();
    void progressivePicture();
    void backingPicture_data();
    void backingPicture();
    void outline();
    void nothingWithoutASource();

private:
    void open(int width, int height)
    {
        layer = openLayer(folder->makeImage(QStringLiteral("image.jp2"), colourImage(width, height)));
    }
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
    // What setters ask for again is this, and each call is a new view.
    layer->setBandList({1, 1, 1});
    const PLKSetViewInfo again = layer->getFile()->GetSetViewInfo();
    QCOMPARE(QSize(int(again.nSizeX), int(again.nSizeY)), QSize(500, 800));
    QCOMPARE(again.fBottomRightX, 50.0);
    QCOMPARE(again.nGeneration, view.nGeneration + 1);
}

void TestLayerView::viewOutsideClearsThePicture()
{
    TestFolder::setSetting("OpenProgressive", true);
    open(100, 80);
    viewWhole(*layer);
    QTRY_COMPARE(paintedWhole(*layer).pixel(7, 5), colourOf(7, 5));
    const quint64 view = layer->getFile()->GetSetViewInfo().nGeneration;
    layer->setView(100, 80, 200, 0, 300, -80);
    QCOMPARE(QColor(paintedWhole(*layer).pixel(7, 5)), QColor(Qt::white));
    QCOMPARE(layer->getFile()->GetSetViewInfo().nGeneration, view);
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
    layer->beginUpdate(false); // either argument is a beginning
    if (!updating)
        layer->endUpdate();
    layer->setView(1001, 801, 0, 0, 100, -80);
    const PLKSetViewInfo main = layer->getFile()->GetSetViewInfo();
    const PLKSetViewInfo backing = backingOf(*layer)->GetSetViewInfo();
    QTEST(QSize(int(main.nSizeX), int(main.nSizeY)), "main");
    QTEST(QSize(int(backing.nSizeX), int(backing.nSizeY)), "backing");
    QCOMPARE(backing.fBottomRightX, main.fBottomRightX);
    QCOMPARE(backing.fTopLeftY, main.fTopLeftY);
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
}

void TestLayerView::blockingPicture()
{
    TestFolder::setSetting("UseBackingstore", true); // whose picture lies below
    open(64, 48);
    viewWhole(*layer);
    const QImage picture = paintedWhole(*layer);
    for (const QPoint &cell : {QPoint(0, 0), QPoint(63, 0), QPoint(17, 47)})
        QCOMPARE(picture.pixel(cell), colourOf(cell.x(), cell.y()));
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

void TestLayerView::backingPicture_data()
{
    QTest::addColumn<bool>("updating");
    QTest::addColumn<bool>("opacityBand");
    QTest::addColumn<double>("transparency");
    QTest::addColumn<bool>("isShown");
    QTest::newRow("at rest") << false << false << 1.0 << true;
    QTest::newRow("opacity band") << false << true << 1.0 << false;
    QTest::newRow("opacity band, local, updating") << true << true << 1.0 << false;
    QTest::newRow("partly transparent") << false << false << 0.5 << false;
}

void TestLayerView::backingPicture()
{
    QFETCH(bool, updating);
    QFETCH(bool, opacityBand);
    QFETCH(double, transparency);
    TestFolder::setSetting("UseBackingstore", true);
    TestFolder::setSetting("OpenProgressive", true);
    jp2maker::Options options = colourImage(40, 40);
    options.components.resize(opacityBand ? 4 : 3);
    options.opacityLast = opacityBand;
    options.cell = [](int, int, int) { return 90; };
    layer = openLayer(folder->makeImage(QStringLiteral("grey.jp2"), options));
    layer->setTransparency(transparency);
    layer->setDrawOutline(true);
    if (updating)
        layer->beginUpdate(true);
    viewWhole(*layer);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QTRY_VERIFY(!layer->hasPendingRefresh());
    rendererOf(*layer)->clearImage();
    const QImage picture = paintedWhole(*layer);
    QTEST(picture.pixelColor(30, 20) != QColor(Qt::white), "isShown");
    QCOMPARE(picture.pixelColor(0, 20), QColor(Qt::cyan)); // over all
}

void TestLayerView::outline()
{
    TestFolder::setSetting("OpenProgressive", true); // so that there is nothing but the outline
    open(40, 40);
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

void TestLayerView::nothingWithoutASource()
{
    XRVJP2kLayer fresh(nullptr);
    fresh.setDrawOutline(true);
    fresh.setView(100, 100, 0, 0, 1, -1);
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
