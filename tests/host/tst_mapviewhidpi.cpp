#include "fakelayer.h"

#include <QDGui/mapview.h>

#include <QApplication>
#include <QTest>

using Korvane::Map::MapView;

/// On a screen with one and a half device pixels per logical pixel.
class TestMapViewHiDpi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void announcesDevicePixels();
    void drawsDevicePixelsOneToOne();
};

void TestMapViewHiDpi::announcesDevicePixels()
{
    MapView view;
    view.resize(400, 300);
    auto *layer = new FakeLayer(QRectF(0, 450, 600, -450));
    view.addLayer(layer, -1);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCOMPARE(view.devicePixelRatioF(), 1.5);
    QTRY_COMPARE(layer->view.size, QSize(600, 450));
    QCOMPARE(view.getUnitsPerPixel(), 1.0);
    QCOMPARE(view.widgetToWorld(QPointF(200, 150)), QPointF(300, 225));
    view.zoomAt(2.0, QPointF(100, 100));
    QCOMPARE(view.worldToWidget(QPointF(150, 300)), QPointF(100, 100));
}

void TestMapViewHiDpi::drawsDevicePixelsOneToOne()
{
    MapView view;
    view.resize(400, 300);
    view.addLayer(new FakeLayer(QRectF(0, 450, 600, -450)), -1);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const QImage shown = view.grab().toImage();
    QCOMPARE(shown.size(), QSize(600, 450));
    QCOMPARE(shown.pixel(299, 224), qRgb(255, 0, 0));
    QCOMPARE(shown.pixel(300, 224), qRgb(0, 255, 0));
    QCOMPARE(shown.pixel(299, 225), qRgb(0, 0, 255));
    QCOMPARE(shown.pixel(300, 225), qRgb(255, 255, 0));
}

int main(int argc, char **argv)
{
    qputenv("QT_SCALE_FACTOR", "1.5");
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    TestMapViewHiDpi test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_mapviewhidpi.moc"
