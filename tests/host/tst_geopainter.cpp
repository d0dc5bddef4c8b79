#include <QDGui/geoimage.h>
#include <QDGui/geopainter.h>

#include <QImage>
#include <QTest>

using Korvane::GeoImage;
using Korvane::GeoPainter;

class TestGeoPainter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void convertsBothWays();
    void outlinesTheOutermostPixelsOfAnImage_data();
    void outlinesTheOutermostPixelsOfAnImage();
    void leavesOutWhatIsOutOfSight();
};

void TestGeoPainter::convertsBothWays()
{
    QImage target(100, 50, QImage::Format_RGB32);
    const GeoPainter painter(&target, QRectF(1000, 700, 200, -100), QRectF(0, 0, 100, 50));
    QCOMPARE(painter.worldToDevice(QPointF(1000, 700)), QPointF(0, 0));
    QCOMPARE(painter.worldToDevice(QPointF(1150, 650)), QPointF(75, 25));
    QCOMPARE(painter.deviceToWorld(QPointF(75, 25)), QPointF(1150, 650));
}

void TestGeoPainter::outlinesTheOutermostPixelsOfAnImage_data()
{
    QTest::addColumn<QRectF>("extent");
    QTest::newRow("whole pixels") << QRectF(3, -4, 10, -8);
    QTest::newRow("between pixels") << QRectF(3.4, -4.6, 10.3, -8.1);
    QTest::newRow("south up") << QRectF(3, -12, 10, 8);
    QTest::newRow("one pixel") << QRectF(5, -5, 1, -1);
}

void TestGeoPainter::outlinesTheOutermostPixelsOfAnImage()
{
    QFETCH(QRectF, extent);
    const QRectF world(0, 0, 20, -20);
    const QColor blue(Qt::blue);
    const GeoImage image(2, 2, extent.left(), extent.top(), extent.left() + extent.width(),
                         extent.top() + extent.height(), QImage::Format_ARGB32, &blue);
    QImage target(20, 20, QImage::Format_RGB32);
    target.fill(Qt::black);
    GeoPainter painter(&target, world, QRectF(0, 0, 20, 20));
    image.paint(painter, 0, 0, 20, 20, 0, 0, 20, -20);
    QRegion covered;
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x) {
            if (target.pixel(x, y) == blue.rgb())
                covered += QRect(x, y, 1, 1);
        }
    }
    painter.setPen(QPen(Qt::red));
    painter.drawWorldRect(extent);
    painter.end();

    const QRect outer = covered.boundingRect();
    const QRect inner = outer.adjusted(1, 1, -1, -1);
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool isOutline = outer.contains(x, y) && !inner.contains(x, y);
            QCOMPARE(target.pixel(x, y) == QColor(Qt::red).rgb(), isOutline);
        }
    }
}

void TestGeoPainter::leavesOutWhatIsOutOfSight()
{
    QImage target(20, 20, QImage::Format_RGB32);
    target.fill(Qt::black);
    const QImage before = target;
    GeoPainter painter(&target, QRectF(0, 0, 1e-9, -1e-9), QRectF(0, 0, 20, 20));
    painter.setPen(QPen(Qt::red));
    painter.drawWorldRect(-1e6, 1e6, 1e6, -1e6);
    painter.drawWorldRect(1e6, 1e6, 2e6, 2e6);
    painter.end();
    QCOMPARE(target, before);
}

QTEST_MAIN(TestGeoPainter)
#include "tst_geopainter.moc"
