#include <QDGui/geoimage.h>

#include <QColor>
#include <QPainter>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <utility>

using Korvane::GeoImage;

namespace {

constexpr QRgb kNothing = 0;

/// No two pixels alike, so that any shift or mix-up shows.
QImage noise(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    QRandomGenerator random(4711);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, 0xff000000U | random.bounded(0x1000000U));
    }
    return image;
}

QImage canvas(const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// Paints onto all of \a target, one world unit per pixel, (0, 0) at the top left.
void paintOn(QImage &target, const GeoImage &image, bool smooth)
{
    QPainter painter(&target);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
    image.paint(painter, 0, 0, target.width(), target.height(), 0, 0, target.width(), -target.height());
}

/// Whether \a target shows \a expected at \a place and nothing elsewhere.
bool holdsOnly(const QImage &target, const QImage &expected, const QPoint &place)
{
    const QRect inside(place, expected.size());
    for (int y = 0; y < target.height(); ++y) {
        for (int x = 0; x < target.width(); ++x) {
            const QRgb wanted = inside.contains(x, y) ? expected.pixel(QPoint(x, y) - place) : kNothing;
            if (target.pixel(x, y) != wanted) {
                qWarning("pixel %d, %d is %08x, not %08x", x, y, target.pixel(x, y), wanted);
                return false;
            }
        }
    }
    return true;
}

} // namespace

class TestGeoImage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesBitForBit_data();
    void copiesBitForBit();
    void turnsOverWhatRunsAgainstTheDevice_data();
    void turnsOverWhatRunsAgainstTheDevice();
    void keepsPixelsAtTheirPlace_data();
    void keepsPixelsAtTheirPlace();
    void tilesMakeTheWhole_data();
    void tilesMakeTheWhole();
    void smoothNeighboursLeaveNoSeam();
    void partsOfAPictureEqualTheWhole_data();
    void partsOfAPictureEqualTheWhole();
    void largePicturesHaveNoSeams_data();
    void largePicturesHaveNoSeams();
    void staysInsideTheDeviceRectangle();
    void paintsInPhysicalPixels();
    void zoomsInVeryFar();
    void drawsNothingForSenselessExtents_data();
    void drawsNothingForSenselessExtents();
    void respectsOpacity();
};

void TestGeoImage::copiesBitForBit_data()
{
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("top");
    QTest::addColumn<QPoint>("place");
    // Half a pixel and more rounds up, as the edges of the views that are decoded do.
    QTest::newRow("whole pixels") << 4.0 << 6.0 << QPoint(4, 6);
    QTest::newRow("odd pixels") << 5.0 << 3.0 << QPoint(5, 3);
    QTest::newRow("a little late") << 4.3 << 6.49 << QPoint(4, 6);
    QTest::newRow("a little early") << 4.51 << 5.5 << QPoint(5, 6);
    QTest::newRow("beyond the left and top") << -3.0 << -2.0 << QPoint(-3, -2);
    QTest::newRow("beyond, between pixels") << -2.6 << -0.5 << QPoint(-3, 0);
    QTest::newRow("beyond the right and bottom") << 15.0 << 17.2 << QPoint(15, 17);
}

void TestGeoImage::copiesBitForBit()
{
    QFETCH(double, left);
    QFETCH(double, top);
    QFETCH(QPoint, place);
    const QImage source = noise(7, 5);
    for (const bool smooth : {false, true}) {
        QImage target = canvas(QSize(20, 20));
        paintOn(target, GeoImage(source, left, -top, left + 7, -top - 5), smooth);
        QVERIFY(holdsOnly(target, source, place));
    }
}

void TestGeoImage::turnsOverWhatRunsAgainstTheDevice_data()
{
    QTest::addColumn<bool>("isMirrored");
    QTest::addColumn<bool>("isSouthUp");
    QTest::addColumn<int>("scale");
    QTest::newRow("south up") << false << true << 1;
    QTest::newRow("south up, enlarged") << false << true << 3;
    QTest::newRow("mirrored") << true << false << 1;
    QTest::newRow("both, enlarged") << true << true << 2;
}

void TestGeoImage::turnsOverWhatRunsAgainstTheDevice()
{
    QFETCH(bool, isMirrored);
    QFETCH(bool, isSouthUp);
    QFETCH(int, scale);
    const QImage source = noise(6, 4);
    double x1 = 3, x2 = x1 + 6 * scale;
    double y1 = -1, y2 = y1 - 4 * scale;
    if (isMirrored)
        std::swap(x1, x2);
    if (isSouthUp)
        std::swap(y1, y2);
    QImage target = canvas(QSize(24, 16));
    paintOn(target, GeoImage(source, x1, y1, x2, y2), false);
    const QImage expected = source.mirrored(isMirrored, isSouthUp).scaled(source.size() * scale);
    QVERIFY(holdsOnly(target, expected, QPoint(3, 1)));
}

void TestGeoImage::keepsPixelsAtTheirPlace_data()
{
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("scale");
    // Chosen so that no cell ends exactly on a pixel's centre, where rounding noise decides.
    for (const double scale : {0.6113, 1.5077, 2.4931, 3.7037, 10.2517}) {
        for (const double offset : {0.0, 0.2513, -0.7041, 13.9007, -40.3029}) {
            QTest::addRow("scale %.2f at %.2f", scale, offset) << offset << scale;
        }
    }
}

void TestGeoImage::keepsPixelsAtTheirPlace()
{
    QFETCH(double, offset);
    QFETCH(double, scale);
    constexpr int cellCount = 40;
    GeoImage image(cellCount, 3, offset, 0, offset + cellCount * scale, -3, QImage::Format_ARGB32, nullptr);
    for (int cell = 0; cell < cellCount; ++cell) {
        for (int y = 0; y < 3; ++y)
            image.setPixel(cell, y, cell % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, cell));
    }
    QImage target = canvas(QSize(120, 3));
    paintOn(target, image, false);
    for (int x = 0; x < target.width(); ++x) {
        const double cell = std::floor((x + 0.5 - offset) / scale);
        const bool isInside = cell >= 0 && cell < cellCount;
        const QRgb wanted = isInside ? image.pixel(static_cast<int>(cell), 0) : kNothing;
        QCOMPARE(target.pixel(x, 1), wanted);
    }
}

void TestGeoImage::tilesMakeTheWhole_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("offset");
    // As above; nor is any so near to one pixel per cell that a tile would be copied.
    for (const double scale : {0.4513, 1.3719, 2.6011}) {
        for (const double offset : {0.0, 0.3137, 7.7741})
            QTest::addRow("scale %.2f at %.2f", scale, offset) << scale << offset;
    }
}

void TestGeoImage::tilesMakeTheWhole()
{
    QFETCH(double, scale);
    QFETCH(double, offset);
    const QImage source = noise(48, 48);
    const double extent = 48 * scale;
    QImage whole = canvas(QSize(140, 140));
    paintOn(whole, GeoImage(source, offset, -offset, offset + extent, -offset - extent), false);

    QImage tiled = canvas(whole.size());
    constexpr int kBorders[] = {0, 11, 30, 48};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const QRect cells(QPoint(kBorders[column], kBorders[row]),
                              QPoint(kBorders[column + 1] - 1, kBorders[row + 1] - 1));
            const GeoImage tile(source.copy(cells), offset + kBorders[column] * scale, -offset - kBorders[row] * scale,
                                offset + kBorders[column + 1] * scale, -offset - kBorders[row + 1] * scale);
            paintOn(tiled, tile, false);
        }
    }
    QCOMPARE(tiled, whole);
}

void TestGeoImage::smoothNeighboursLeaveNoSeam()
{
    const QColor grey(90, 90, 90);
    for (int step = 0; step < 20; ++step) {
        const double border = 10.0 + step * 0.1;
        const GeoImage left(4, 4, 1.0, 0, border, -16, QImage::Format_ARGB32, &grey);
        const GeoImage right(4, 4, border, 0, 30.0, -16, QImage::Format_ARGB32, &grey);
        QImage target = canvas(QSize(32, 16));
        paintOn(target, left, true);
        paintOn(target, right, true);
        QImage expected(29, 16, QImage::Format_ARGB32);
        expected.fill(grey);
        QVERIFY2(holdsOnly(target, expected, QPoint(1, 0)), qPrintable(QString::number(border)));
    }
}

void TestGeoImage::partsOfAPictureEqualTheWhole_data()
{
    QTest::addColumn<bool>("smooth");
    QTest::newRow("nearest") << false;
    QTest::newRow("smooth") << true;
}

void TestGeoImage::partsOfAPictureEqualTheWhole()
{
    QFETCH(bool, smooth);
    const GeoImage image(noise(30, 30), 2.4, -1.7, 61.9, -58.2);
    QImage whole = canvas(QSize(64, 64));
    paintOn(whole, image, smooth);
    QImage inParts = canvas(whole.size());
    for (const QRect &part : {QRect(0, 0, 17, 64), QRect(17, 0, 47, 23), QRect(17, 23, 47, 41)}) {
        QPainter painter(&inParts);
        painter.setClipRect(part);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
        image.paint(painter, 0, 0, 64, 64, 0, 0, 64, -64);
    }
    QCOMPARE(inParts, whole);
}

void TestGeoImage::largePicturesHaveNoSeams_data()
{
    QTest::addColumn<bool>("smooth");
    QTest::addColumn<bool>("translucent");
    QTest::addColumn<int>("cellCount");
    QTest::newRow("nearest") << false << false << 37;
    QTest::newRow("smooth") << true << false << 37;
    QTest::newRow("smooth, translucent") << true << true << 37;
    QTest::newRow("nearest, by a pixel") << false << false << 999;
    QTest::newRow("smooth, by a pixel") << true << true << 999;
    QTest::newRow("smooth, smaller by a pixel") << true << false << 1001;
    QTest::newRow("smooth, half") << true << true << 1999;
}

/// Drawn in pieces, a picture of a megapixel is to be what the definition says for every single pixel.
void TestGeoImage::largePicturesHaveNoSeams()
{
    QFETCH(bool, smooth);
    QFETCH(bool, translucent);
    QFETCH(int, cellCount);
    constexpr int kSize = 1000;
    QImage cells = noise(cellCount, cellCount);
    for (int i = 0; translucent && i < cellCount; ++i)
        cells.setPixel(i, (i * 5) % cellCount, qRgba(250, 120, 10, 40 + i % 200));
    QImage target = canvas(QSize(kSize, kSize));
    paintOn(target, GeoImage(cells, 0, 0, kSize, -kSize), smooth);

    const QImage source = cells.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const auto *pixels = reinterpret_cast<const QRgb *>(source.constBits()); // 4 bytes per pixel: rows are packed
    const auto channel = [pixels, cellCount](int x, int y, int shift) {
        return (pixels[y * cellCount + x] >> shift) & 0xff;
    };
    for (int y = 0; y < kSize; ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(target.constScanLine(y));
        const double sourceY = (y + 0.5) * cellCount / kSize - (smooth ? 0.5 : 0.0);
        const double clampedY = std::clamp(sourceY, 0.0, cellCount - 1.0);
        for (int x = 0; x < kSize; x += 7) {
            const double sourceX = (x + 0.5) * cellCount / kSize - (smooth ? 0.5 : 0.0);
            const double clampedX = std::clamp(sourceX, 0.0, cellCount - 1.0);
            const int left = static_cast<int>(smooth ? clampedX : sourceX);
            const int top = static_cast<int>(smooth ? clampedY : sourceY);
            const int right = std::min(left + 1, cellCount - 1);
            const int bottom = std::min(top + 1, cellCount - 1);
            const double fractionX = smooth ? clampedX - left : 0.0;
            const double fractionY = smooth ? clampedY - top : 0.0;
            for (int shift : {0, 8, 16, 24}) {
                const double upper =
                    channel(left, top, shift) * (1 - fractionX) + channel(right, top, shift) * fractionX;
                const double lower =
                    channel(left, bottom, shift) * (1 - fractionX) + channel(right, bottom, shift) * fractionX;
                const double wanted = upper * (1 - fractionY) + lower * fractionY;
                const double found = (row[x] >> shift) & 0xff;
                QVERIFY2(std::abs(found - wanted) <= (smooth ? 3.0 : 0.0),
                         qPrintable(QStringLiteral("%1, %2").arg(x).arg(y)));
            }
        }
    }
}

void TestGeoImage::staysInsideTheDeviceRectangle()
{
    const QColor blue(Qt::blue);
    const GeoImage image(10, 10, -50, 50, 50, -50, QImage::Format_ARGB32, &blue);
    QImage target = canvas(QSize(20, 20));
    QPainter painter(&target);
    image.paint(painter, 4, 6, 12, 16, 0, 10, 8, 0);
    painter.end();
    QImage expected(8, 10, QImage::Format_ARGB32);
    expected.fill(blue);
    QVERIFY(holdsOnly(target, expected, QPoint(4, 6)));
}

void TestGeoImage::paintsInPhysicalPixels()
{
    const QImage source = noise(6, 6);
    QImage target = canvas(QSize(20, 20));
    target.setDevicePixelRatio(2.0);
    QPainter painter(&target);
    painter.translate(1, 2);
    // Ten logical pixels show ten world units; half a unit per cell makes one cell per physical pixel.
    GeoImage(source, 1, -1, 4, -4).paint(painter, 0, 0, 10, 10, 0, 0, 10, -10);
    painter.end();
    QVERIFY(holdsOnly(target, source, QPoint(4, 6)));
}

void TestGeoImage::zoomsInVeryFar()
{
    const GeoImage image(noise(4, 4), 0, 0, 4, -4);
    QImage target = canvas(QSize(16, 16));
    for (const bool smooth : {false, true}) {
        QPainter painter(&target);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth);
        const double x = 2.5, y = -1.5, reach = 1e-9;
        image.paint(painter, 0, 0, 16, 16, x - reach, y + reach, x + reach, y - reach);
        painter.end();
        QCOMPARE(target.pixel(0, 0), image.pixel(2, 1));
        QCOMPARE(target.pixel(15, 15), image.pixel(2, 1));
    }
}

void TestGeoImage::drawsNothingForSenselessExtents_data()
{
    QTest::addColumn<QRectF>("imageWorld");
    QTest::addColumn<QRectF>("world");
    const QRectF good(0, 0, 8, -8);
    QTest::newRow("image without width") << QRectF(1, 0, 0, -8) << good;
    QTest::newRow("view without height") << good << QRectF(0, 0, 8, 0);
    QTest::newRow("image that is not a number") << QRectF(std::nan(""), 0, 8, -8) << good;
    QTest::newRow("view that is not a number") << good << QRectF(0, std::nan(""), 8, -8);
    QTest::newRow("image without end") << QRectF(0, 0, HUGE_VAL, -8) << good;
    QTest::newRow("far away") << QRectF(1e300, 0, 1e300, -8) << good;
    QTest::newRow("less than a pixel") << QRectF(3.1, 0, 0.2, -8) << good;
}

void TestGeoImage::drawsNothingForSenselessExtents()
{
    QFETCH(QRectF, imageWorld);
    QFETCH(QRectF, world);
    const GeoImage image(noise(4, 4), imageWorld.x(), imageWorld.y(), imageWorld.x() + imageWorld.width(),
                         imageWorld.y() + imageWorld.height());
    QImage target = canvas(QSize(8, 8));
    QPainter painter(&target);
    image.paint(painter, 0, 0, 8, 8, world.x(), world.y(), world.x() + world.width(), world.y() + world.height());
    GeoImage(-1, 5, 0, 0, 8, -8, QImage::Format_ARGB32, nullptr).paint(painter, 0, 0, 8, 8, 0, 0, 8, -8);
    painter.end();
    QCOMPARE(target, canvas(target.size()));
}

void TestGeoImage::respectsOpacity()
{
    const QColor white(Qt::white);
    for (const int cells : {8, 3}) {
        const GeoImage image(cells, cells, 0, 0, 8, -8, QImage::Format_ARGB32, &white);
        QImage target(8, 8, QImage::Format_RGB32);
        target.fill(Qt::black);
        QPainter painter(&target);
        painter.setOpacity(0.25);
        image.paint(painter, 0, 0, 8, 8, 0, 0, 8, -8);
        painter.end();
        QVERIFY(std::abs(qRed(target.pixel(5, 5)) - 64) <= 1);
    }
}

QTEST_MAIN(TestGeoImage)
#include "tst_geoimage.moc"
