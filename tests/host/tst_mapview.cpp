#include "fakelayer.h"

#include <QDGui/mapview.h>

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>

#include <atomic>
#include <cmath>
#include <memory>
#include <thread>

using Korvane::Map::Layer;
using Korvane::Map::MapView;

namespace {

const QRectF kBounds(1000, 500, 200, -100);

bool isNear(const QPointF &a, const QPointF &b, double tolerance)
{
    return std::abs(a.x() - b.x()) <= tolerance && std::abs(a.y() - b.y()) <= tolerance;
}

void sendMouse(QWidget &widget, QEvent::Type type, const QPointF &place, Qt::MouseButton button,
               Qt::MouseButtons buttons)
{
    QMouseEvent event(type, place, widget.mapToGlobal(place.toPoint()), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget, &event);
}

void sendWheel(QWidget &widget, const QPointF &place, int angle)
{
    QWheelEvent event(place, widget.mapToGlobal(place.toPoint()), QPoint(), QPoint(0, angle), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&widget, &event);
}

/// A view of 400 by 300 pixels on the screen, with one layer that is all painted.
struct ShownView
{
    explicit ShownView(const QRectF &bounds = kBounds)
        : layer(new FakeLayer(bounds))
    {
        view.resize(400, 300);
        view.addLayer(layer, -1);
        view.show();
        isReady = QTest::qWaitForWindowExposed(&view) && QTest::qWaitFor([this] { return layer->paintCount > 0; });
        layer->calls.clear();
    }

    MapView view;
    FakeLayer *layer;
    bool isReady = false;
};

} // namespace

class TestMapView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsTheFirstLayerWhole();
    void showsEveryDirectionInItsPlace_data();
    void showsEveryDirectionInItsPlace();
    void announcesViewsTheWayTheLayerRuns();
    void followsTheSize();
    void dragPansByWholePixels();
    void wheelZoomsAtThePointer();
    void shiftDragShowsABox();
    void clickWithoutMovingChangesNothing();
    void zoomStopsWhereNumbersEnd();
    void repaintsOnlyWhatChanged();
    void exposeDoesNotAskTheLayers();
    void hiddenLayersAreLeftAlone();
    void stacksLayers();
    void layersMayGoOnTheirOwn();
    void waitsForTheLastPass();
    void waitsForAllLayersAtOnce();
    void waitsNoLongerThanAllowed();
    void offscreenPictureLeavesTheViewAsItWas();
    void viewMayGoWhileWaiting();
    void reportsProgressToTheEnd();
};

void TestMapView::showsTheFirstLayerWhole()
{
    ShownView shown;
    QVERIFY(shown.isReady);
    // 200 units fit across 400 pixels; the height follows from the same scale.
    QCOMPARE(shown.view.getUnitsPerPixel(), 0.5);
    QCOMPARE(shown.view.getVisibleWorldRect(), QRectF(1000, 525, 200, -150));
    const FakeLayer::View announced = shown.layer->view;
    QCOMPARE(announced.size, QSize(400, 300));
    QVERIFY(isNear(QPointF(announced.x1, announced.y1), QPointF(1000, 525), 1e-5));
    QVERIFY(isNear(QPointF(announced.x2, announced.y2), QPointF(1200, 375), 1e-5));
    QCOMPARE(shown.view.widgetToWorld(QPointF(100, 75)), QPointF(1050, 487.5));
    QCOMPARE(shown.view.worldToWidget(QPointF(1050, 487.5)), QPointF(100, 75));

    // Of what is too thin to be seen as a whole, the middle.
    FakeLayer thread(QRectF(0, 0, 1e6, -1));
    shown.view.zoomToLayer(&thread);
    QCOMPARE(shown.view.getVisibleWorldRect(), QRectF(500000 - 100, 74.5, 200, -150));
}

void TestMapView::showsEveryDirectionInItsPlace_data()
{
    QTest::addColumn<QRectF>("bounds");
    QTest::addColumn<QVector<int>>("quarters"); // Seen from the top left, row by row.
    QTest::newRow("north up") << QRectF(1000, 500, 200, -100) << QVector<int>{0, 1, 2, 3};
    QTest::newRow("south up") << QRectF(1000, 400, 200, 100) << QVector<int>{2, 3, 0, 1};
    QTest::newRow("mirrored") << QRectF(1200, 500, -200, -100) << QVector<int>{1, 0, 3, 2};
}

void TestMapView::showsEveryDirectionInItsPlace()
{
    QFETCH(QRectF, bounds);
    QFETCH(QVector<int>, quarters);
    const QVector<QRgb> colors{qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(255, 255, 0)};
    MapView view;
    view.addLayer(new FakeLayer(bounds, colors), -1);
    bool isComplete = false;
    const QImage picture = view.renderToImage(QSize(400, 300), 10000, &isComplete);
    QVERIFY(isComplete);
    QCOMPARE(picture.size(), QSize(400, 300));
    // The layer covers rows 50 to 249; each quarter is checked in its corner and beside the middle.
    const QPoint places[4][2] = {
        {{0, 50}, {199, 149}}, {{399, 50}, {200, 149}}, {{0, 249}, {199, 150}}, {{399, 249}, {200, 150}}};
    for (int quarter = 0; quarter < 4; ++quarter) {
        for (const QPoint &place : places[quarter])
            QCOMPARE(picture.pixel(place), colors[quarters[quarter]]);
    }
    QCOMPARE(picture.pixel(0, 49), qRgb(255, 255, 255));
    QCOMPARE(picture.pixel(399, 250), qRgb(255, 255, 255));
}

void TestMapView::announcesViewsTheWayTheLayerRuns()
{
    MapView view;
    auto *layer = new FakeLayer(QRectF(1000, 400, 200, 100));
    view.addLayer(layer, -1);
    view.renderToImage(QSize(400, 300), 10000);
    QVERIFY(isNear(QPointF(layer->view.x1, layer->view.y1), QPointF(1000, 375), 1e-5));
    QVERIFY(isNear(QPointF(layer->view.x2, layer->view.y2), QPointF(1200, 525), 1e-5));
}

void TestMapView::followsTheSize()
{
    ShownView shown;
    shown.view.resize(800, 200);
    QTRY_COMPARE(shown.layer->view.size, QSize(800, 200));
    QCOMPARE(shown.view.getUnitsPerPixel(), 0.5); // Now the height decides: 100 units down 200 pixels.

    shown.view.panBy(QPointF(30, 10));
    const QPointF center = shown.view.getCenter();
    shown.view.resize(300, 300);
    QTRY_COMPARE(shown.layer->view.size, QSize(300, 300));
    QCOMPARE(shown.view.getUnitsPerPixel(), 0.5);
    QCOMPARE(shown.view.getCenter(), center);
}

void TestMapView::dragPansByWholePixels()
{
    ShownView shown;
    const QPointF grabbed = shown.view.widgetToWorld(QPointF(200, 150));
    sendMouse(shown.view, QEvent::MouseButtonPress, QPointF(200, 150), Qt::LeftButton, Qt::LeftButton);
    for (const QPointF &place : {QPointF(200.3, 150.2), QPointF(201.6, 149), QPointF(230.5, 120.5)}) {
        sendMouse(shown.view, QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton);
        shown.view.repaint();
    }
    const QPointF place = shown.view.worldToWidget(grabbed);
    QVERIFY(isNear(place, QPointF(230.5, 120.5), 0.51));
    QVERIFY(isNear(place, QPointF(std::round(place.x()), std::round(place.y())), 1e-6));
    sendMouse(shown.view, QEvent::MouseButtonRelease, QPointF(230.5, 120.5), Qt::LeftButton, Qt::NoButton);
    shown.view.repaint();
    QCOMPARE(shown.layer->calls.join(QLatin1Char(' ')), QStringLiteral("roam setView setView end setView"));
    const QPointF center = shown.view.getCenter();
    shown.view.resize(300, 300);
    QTRY_COMPARE(shown.layer->view.size, QSize(300, 300));
    QCOMPARE(shown.view.getCenter(), center); // what has been dragged is not fitted into the window again
}

void TestMapView::wheelZoomsAtThePointer()
{
    ShownView shown;
    const QPointF pointer(90, 210);
    const QPointF world = shown.view.widgetToWorld(pointer);
    sendWheel(shown.view, pointer, 120);
    sendWheel(shown.view, pointer, 120);
    QVERIFY(std::abs(shown.view.getUnitsPerPixel() - 0.25) < 1e-12);
    QVERIFY(isNear(shown.view.widgetToWorld(pointer), world, 1e-9));
    // The pause after the last notch ends the series; the final view comes after that.
    QTRY_COMPARE(shown.layer->calls.join(QLatin1Char(' ')), QStringLiteral("zoom setView end setView"));
    sendWheel(shown.view, pointer, -240);
    QVERIFY(std::abs(shown.view.getUnitsPerPixel() - 0.5) < 1e-12);
}

void TestMapView::shiftDragShowsABox()
{
    ShownView shown;
    const QPointF topLeft = shown.view.widgetToWorld(QPointF(60, 40));
    const QPointF bottomRight = shown.view.widgetToWorld(QPointF(160, 140));
    QTest::mousePress(&shown.view, Qt::LeftButton, Qt::ShiftModifier, QPoint(160, 140)); // in any direction
    QMouseEvent move(QEvent::MouseMove, QPointF(60, 40), Qt::NoButton, Qt::LeftButton, Qt::ShiftModifier);
    QApplication::sendEvent(&shown.view, &move);
    QTest::mouseRelease(&shown.view, Qt::LeftButton, Qt::ShiftModifier, QPoint(60, 40));
    QVERIFY(isNear(shown.view.getCenter(), (topLeft + bottomRight) / 2, 1.0));
    const QRectF seen = shown.view.getVisibleWorldRect().normalized();
    QVERIFY(seen.contains(topLeft) && seen.contains(bottomRight));
    QVERIFY(std::min(seen.width(), seen.height()) < 1.1 * (bottomRight.x() - topLeft.x()));
}

void TestMapView::clickWithoutMovingChangesNothing()
{
    ShownView shown;
    QSignalSpy spy(&shown.view, &MapView::viewChanged);
    QTest::mouseClick(&shown.view, Qt::LeftButton, Qt::NoModifier, QPoint(50, 50));
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
    QVERIFY(shown.layer->calls.isEmpty());
}

void TestMapView::zoomStopsWhereNumbersEnd()
{
    ShownView shown;
    for (int i = 0; i < 200; ++i)
        shown.view.zoomAt(4.0, QPointF(200, 150));
    shown.view.repaint();
    QVERIFY(shown.view.widgetToWorld(QPointF(200, 150)) != shown.view.widgetToWorld(QPointF(201, 151)));
    for (int i = 0; i < 400; ++i)
        shown.view.zoomAt(0.25, QPointF(200, 150));
    shown.view.repaint();
    QVERIFY(shown.view.getUnitsPerPixel() <= 200.0);
    shown.view.setUnitsPerPixel(std::nan(""));
    shown.view.setVisibleWorldRect(QRectF(0, 0, HUGE_VAL, 1));
    QVERIFY(shown.view.getUnitsPerPixel() <= 200.0);
}

void TestMapView::repaintsOnlyWhatChanged()
{
    ShownView shown;
    auto *other = new FakeLayer(kBounds);
    shown.view.addLayer(other, -1);
    shown.view.repaint();
    QCOMPARE(other->paintCount, 1);
    const int paintedBefore = shown.layer->paintCount;

    // 20 by 10 units at half a unit per pixel, from column 100 and row 150 on.
    other->refresh(1050, 450, 1070, 440);
    QTRY_COMPARE(other->paintCount, 2);
    const QRect painted = other->paintedRegion.boundingRect();
    QVERIFY(painted.contains(QRect(100, 150, 40, 20)));
    QVERIFY(QRect(97, 147, 46, 26).contains(painted));
    QCOMPARE(shown.layer->paintCount, paintedBefore);
    QCOMPARE(other->viewCount, 1);

    other->refresh(0, 0, 0, 0);
    QTRY_COMPARE(other->paintCount, 3);
    QCOMPARE(other->paintedRegion.boundingRect(), QRect(0, 0, 400, 300));
}

void TestMapView::exposeDoesNotAskTheLayers()
{
    ShownView shown;
    const int painted = shown.layer->paintCount;
    shown.view.hide();
    shown.view.show();
    shown.view.repaint();
    QCOMPARE(shown.layer->paintCount, painted);
    QVERIFY(!shown.layer->calls.contains(QStringLiteral("setView")));
}

void TestMapView::hiddenLayersAreLeftAlone()
{
    ShownView shown;
    auto *hidden = new FakeLayer(kBounds);
    hidden->setVisible(false);
    shown.view.addLayer(hidden, -1);
    shown.view.repaint();
    QCOMPARE(hidden->viewCount + hidden->paintCount, 0);
    hidden->setVisible(true);
    QTRY_COMPARE(hidden->paintCount, 1);
    QCOMPARE(hidden->viewCount, 1);
    hidden->setVisible(false);
    shown.layer->setVisible(false);
    QTRY_COMPARE(shown.view.grab().toImage().pixel(200, 150), qRgb(255, 255, 255));
}

void TestMapView::stacksLayers()
{
    MapView view;
    QSignalSpy active(&view, &MapView::activeLayerChanged);
    auto *a = new FakeLayer(kBounds);
    auto *b = new FakeLayer(kBounds);
    auto *c = new FakeLayer(kBounds);
    QCOMPARE(view.addLayer(a, -1), 0);
    QCOMPARE(view.addLayer(b, 0), 0);
    QCOMPARE(view.addLayer(c, 99), 2);
    QCOMPARE(view.getLayers(), QList<Layer *>({b, a, c}));
    QCOMPARE(view.addLayer(nullptr, -1), -1);
    QCOMPARE(view.addLayer(a, -1), -1);
    MapView otherView;
    QCOMPARE(otherView.addLayer(a, -1), -1);

    QVERIFY(view.moveLayer(0, 2));
    QCOMPARE(view.getLayers(), QList<Layer *>({a, c, b}));
    QVERIFY(view.moveLayer(2, 1));
    QCOMPARE(view.getLayers(), QList<Layer *>({a, b, c}));
    QVERIFY(!view.moveLayer(0, 3));

    QCOMPARE(active.count(), 3);
    QCOMPARE(view.getActiveLayer(), c);
    const std::unique_ptr<Layer> taken(view.takeLayer(c));
    QCOMPARE(taken.get(), c);
    QCOMPARE(taken->parent(), nullptr);
    QCOMPARE(view.getActiveLayer(), b);
    QVERIFY(view.removeLayer(b));
    QVERIFY(!view.removeLayer(c));
    QCOMPARE(view.indexOf(a), 0);
    QCOMPARE(otherView.addLayer(c, -1), 0);
    QCOMPARE(otherView.takeLayer(c), c);
}

void TestMapView::layersMayGoOnTheirOwn()
{
    ShownView shown;
    sendMouse(shown.view, QEvent::MouseButtonPress, QPointF(10, 10), Qt::LeftButton, Qt::LeftButton);
    sendMouse(shown.view, QEvent::MouseMove, QPointF(20, 20), Qt::NoButton, Qt::LeftButton);
    shown.layer->refresh(0, 0, 0, 0);
    delete shown.layer;
    QCOMPARE(shown.view.getLayerCount(), 0);
    QCOMPARE(shown.view.getActiveLayer(), nullptr);
    sendMouse(shown.view, QEvent::MouseButtonRelease, QPointF(20, 20), Qt::LeftButton, Qt::NoButton);
    shown.view.repaint();
    QVERIFY(shown.view.isComplete());
}

void TestMapView::waitsForTheLastPass()
{
    // A decoder on its own thread: the percentage reaches 100 while the pixels of the last pass are still on their way.
    MapView view;
    auto *layer = new FakeLayer(kBounds);
    layer->percent = 0;
    view.addLayer(layer, -1);
    std::atomic<bool> isLastPassDone{false};
    std::thread decoder([&] {
        for (const int percent : {30, 60, 100}) {
            layer->percent = percent;
            // The view sees the percentage before the pixels.
            for (const int seen = layer->askedCount; layer->askedCount < seen + 2;)
                std::this_thread::yield();
            isLastPassDone = percent == 100;
            layer->refresh(1000, 500, 1200, 400);
        }
    });
    bool isComplete = false;
    const QImage picture = view.renderToImage(QSize(200, 100), 10000, &isComplete);
    QVERIFY(isLastPassDone);
    decoder.join();
    QVERIFY(isComplete);
    QVERIFY(layer->paintCount >= 2);
    QCOMPARE(picture.pixel(0, 0), qRgb(255, 0, 0));
}

void TestMapView::waitsForAllLayersAtOnce()
{
    // Every one needs a tenth of a second to settle.
    MapView view;
    for (int i = 0; i < 100; ++i)
        view.addLayer(new FakeLayer(kBounds), -1);
    bool isComplete = false;
    view.renderToImage(QSize(20, 10), 5000, &isComplete);
    QVERIFY(isComplete);
}

void TestMapView::waitsNoLongerThanAllowed()
{
    MapView view;
    auto *layer = new FakeLayer(kBounds);
    layer->percent = 50;
    view.addLayer(layer, -1);
    bool isComplete = true;
    QElapsedTimer elapsed;
    elapsed.start();
    const QImage picture = view.renderToImage(QSize(200, 100), 200, &isComplete);
    QVERIFY(!isComplete);
    QVERIFY(elapsed.elapsed() >= 200);
    QVERIFY(elapsed.elapsed() < 5000);
    QCOMPARE(picture.pixel(0, 0), qRgb(255, 0, 0)); // What there is, is shown.

    layer->valid = false;
    QVERIFY(view.waitUntilComplete(10000));
    QVERIFY(view.renderToImage(QSize(0, 10), 100, &isComplete).isNull());
    QVERIFY(!isComplete);
}

void TestMapView::offscreenPictureLeavesTheViewAsItWas()
{
    ShownView shown;
    const QRectF before = shown.view.getVisibleWorldRect();
    const QImage widget = shown.view.grab().toImage();
    const QImage picture = shown.view.renderToImage(QSize(100, 100), QRectF(1000, 500, 50, -50), 10000);
    QCOMPARE(picture.pixel(99, 99), qRgb(255, 0, 0));
    QCOMPARE(shown.view.getVisibleWorldRect(), before);
    QTRY_COMPARE(shown.layer->view.size, QSize(400, 300));
    QCOMPARE(shown.view.grab().toImage(), widget);
}

void TestMapView::viewMayGoWhileWaiting()
{
    QPointer<MapView> view(new MapView);
    auto *layer = new FakeLayer(kBounds);
    layer->percent = 50;
    view->addLayer(layer, -1);
    QTimer::singleShot(50, this, [&view] { delete view; });
    bool isComplete = true;
    QVERIFY(view->renderToImage(QSize(200, 100), 10000, &isComplete).isNull());
    QVERIFY(!isComplete);
    QVERIFY(view.isNull());
}

void TestMapView::reportsProgressToTheEnd()
{
    ShownView shown;
    QTRY_VERIFY(shown.view.isComplete());
    QSignalSpy spy(&shown.view, &MapView::progressChanged);
    shown.layer->percent = 40;
    shown.layer->refresh(0, 0, 0, 0);
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.last()[0].toInt(), 40);
    shown.layer->percent = 100;
    QTRY_COMPARE(spy.last()[0].toInt(), 100);
    QVERIFY(shown.view.isComplete());
}

QTEST_MAIN(TestMapView)
#include "tst_mapview.moc"
