#include "layer/viewclipping.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace Korvane;

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

ImageGrid gridOf(std::uint32_t width, std::uint32_t height, double cellX, double cellY, double originX, double originY)
{
    return {width, height, cellX, cellY, originX, originY, [=](double column, double row) {
                return QPointF(originX + column * cellX, originY + row * cellY);
            }};
}

/// 1000 by 800 cells of one unit, north up, from (0, 0).
const ImageGrid kPlain = gridOf(1000, 800, 1, -1, 0, 0);
/// The same turned over.
const ImageGrid kSouthUp = gridOf(1000, 800, 1, 1, 0, 0);
/// Cells of 60 units at a projected origin.
const ImageGrid kProjected = gridOf(1830, 1830, 60, -60, 299940, 4100000);

} // namespace

Q_DECLARE_METATYPE(ImageGrid)
Q_DECLARE_METATYPE(ClippedView)

class TestViewClipping : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clips_data();
    void clips();
    void refuses_data();
    void refuses();
};

void TestViewClipping::clips_data()
{
    QTest::addColumn<ImageGrid>("grid");
    QTest::addColumn<ClippedView>("requested");
    QTest::addColumn<ClippedView>("expected");

    QTest::newRow("whole image, one pixel per cell")
        << kPlain << ClippedView{1000, 800, 0, 0, 1000, -800} << ClippedView{1000, 800, 0, 0, 1000, -800};
    QTest::newRow("left half outside") << kPlain << ClippedView{1000, 800, -500, 0, 500, -800}
                                       << ClippedView{500, 800, 0, 0, 500, -800};
    QTest::newRow("image inside the request on all sides")
        << kPlain << ClippedView{1000, 800, -500, 400, 1500, -1200} << ClippedView{500, 400, 0, 0, 1000, -800};
    // 10.25 to 19.75 touches cells 10 to 19; at 100 pixels for 9.5 units the ten cells take trunc(102.63 + .5) -
    // trunc(-2.63 + .5) = 103 + 2 pixels.
    QTest::newRow("grows to whole cells")
        << kPlain << ClippedView{100, 100, 10.25, -10.25, 19.75, -19.75} << ClippedView{105, 105, 10, -10, 20, -20};
    QTest::newRow("south up") << kSouthUp << ClippedView{1000, 800, -500, -400, 500, 400}
                              << ClippedView{500, 400, 0, 0, 500, 400};
    QTest::newRow("projected, down-sampled four times")
        << kProjected << ClippedView{500, 500, 299940, 4100000, 419940, 3980000}
        << ClippedView{458, 458, 299940, 4100000, 299940 + 1830 * 60, 4100000 - 1830 * 60};
    QTest::newRow("touches the right edge from within")
        << kPlain << ClippedView{100, 100, 990, -10, 1090, -110} << ClippedView{10, 100, 990, -10, 1000, -110};
    QTest::newRow("wider than four thousand million cells")
        << gridOf(4294967295U, 10, 1, -1, 0, 0) << ClippedView{100, 10, 0, 0, 4294967295.0, -10}
        << ClippedView{100, 10, 0, 0, 4294967295.0, -10};
    QTest::newRow("request far beyond the range of an int")
        << kPlain << ClippedView{1 << 30, 1 << 30, -1e12, 6e11, 1e12, -6e11} << ClippedView{1, 1, 0, 0, 1000, -800};
}

void TestViewClipping::clips()
{
    QFETCH(ImageGrid, grid);
    QFETCH(ClippedView, requested);
    QFETCH(ClippedView, expected);
    const auto clipped = clipView(grid, requested);
    QVERIFY(clipped.has_value());
    QCOMPARE(QRectF(QPointF(clipped->x1, clipped->y1), QPointF(clipped->x2, clipped->y2)),
             QRectF(QPointF(expected.x1, expected.y1), QPointF(expected.x2, expected.y2)));
    QCOMPARE(QSize(clipped->width, clipped->height), QSize(expected.width, expected.height));
}

void TestViewClipping::refuses_data()
{
    QTest::addColumn<ImageGrid>("grid");
    QTest::addColumn<ClippedView>("requested");

    QTest::newRow("left of the image") << kPlain << ClippedView{100, 100, -200, 0, -100, -100};
    QTest::newRow("right of the image") << kPlain << ClippedView{100, 100, 1001, 0, 1101, -100};
    QTest::newRow("above, north up") << kPlain << ClippedView{100, 100, 0, 200, 100, 100};
    QTest::newRow("below, north up") << kPlain << ClippedView{100, 100, 0, -801, 100, -901};
    QTest::newRow("above, south up") << kSouthUp << ClippedView{100, 100, 0, -200, 100, -100};
    QTest::newRow("below, south up") << kSouthUp << ClippedView{100, 100, 0, 801, 100, 901};
    QTest::newRow("less than a pixel") << kPlain << ClippedView{100, 100, -1e6, 1e6, 1e6, -1e6};
    QTest::newRow("no width") << kPlain << ClippedView{100, 100, 10, -10, 10, -20};
    QTest::newRow("no height") << kPlain << ClippedView{100, 100, 10, -10, 20, -10};
    QTest::newRow("no pixels") << kPlain << ClippedView{0, 0, 0, 0, 1000, -800};
    QTest::newRow("not a number") << kPlain << ClippedView{100, 100, kNan, kNan, kNan, kNan};
    QTest::newRow("one corner not a number") << kPlain << ClippedView{100, 100, 0, 0, kNan, -800};
    QTest::newRow("infinite") << kPlain << ClippedView{100, 100, -kInfinity, kInfinity, kInfinity, -kInfinity};
    QTest::newRow("cells without extent") << gridOf(10, 10, 0, 0, 0, 0) << ClippedView{100, 100, -5, 5, 5, -5};
}

void TestViewClipping::refuses()
{
    QFETCH(ImageGrid, grid);
    QFETCH(ClippedView, requested);
    QVERIFY(!clipView(grid, requested).has_value());
}

QTEST_APPLESS_MAIN(TestViewClipping)
#include "tst_viewclipping.moc"
