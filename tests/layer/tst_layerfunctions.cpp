#include "data/testfolder.h"
#include "layer/sourcetexts.h"
#include "layer/tonetable.h"
#include "layer/urlfile.h"
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

/// What the layer is made of that needs no image.
class TestLayerFunctions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void urlFile_data();
    void urlFile();
    void urlFileThatIsMissing();
    void gigaPixels_data();
    void gigaPixels();
    void description_data();
    void description();
    void widenedNamesAreFoundAgain();
    void toneTable_data();
    void toneTable();
    void clips_data();
    void clips();
    void refuses_data();
    void refuses();
    void hugePictures_data();
    void hugePictures();

private:
    TestFolder folder;
};

void TestLayerFunctions::urlFile_data()
{
    using Status = UrlFile::Status;
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("address");
    const auto row = [](const char *name, const QByteArray &text, Status status, const char *address) {
        QTest::newRow(name) << text << int(status) << QString::fromUtf8(address);
    };
    row("capitals", "URL=xrvp://server/a.xrv\n", Status::Ok, "xrvp://server/a.xrv");
    row("small letters", "url=xrvps://server/a.xrv", Status::Ok, "xrvps://server/a.xrv");
    row("mixed letters do not count", "Url=xrvp://server/a.xrv\n", Status::Ok, "");
    row("leading blank does not count", " URL=xrvp://server/a.xrv\n", Status::Ok, "");
    row("line ends of DOS", "[InternetShortcut]\r\nURL=xrvp://server/a.xrv\r\nX=1\r\n", Status::Ok,
        "xrvp://server/a.xrv");
    row("cut at the second equals sign", "URL=xrvp://server/a.xrv?x=1\n", Status::Ok, "xrvp://server/a.xrv?x");
    row("last address wins", "URL=xrvp://server/a.xrv\nurl=xrvp://server/b.xrv\n", Status::Ok, "xrvp://server/b.xrv");
    row("capitals in the protocol", "URL=XRVP://Server/A.xrv\n", Status::Ok, "XRVP://Server/A.xrv");
    row("jpip is passed on", "URL=jpip://server/a.jp2\n", Status::Ok, "jpip://server/a.jp2");
    row("other protocol", "URL=http://server/a.jp2\n", Status::BadProtocol, "");
    row("refused although a good one follows", "URL=http://a/\nURL=xrvp://server/a.xrv\n", Status::BadProtocol, "");
    row("empty address", "URL=\n", Status::BadProtocol, "");
    row("beyond ASCII", "URL=xrvp://server/\xc3\x9c.xrv\n", Status::Ok, "xrvp://server/\xc3\x9c.xrv");
    row("no address at all", "hello\n", Status::Ok, "");
    row("not a text", QByteArray(200000, '\0') + "URL=xrvp://server/a.xrv", Status::Ok, "");
}

void TestLayerFunctions::urlFile()
{
    QFETCH(QByteArray, text);
    const UrlFile read = readUrlFile(folder.writeText(QStringLiteral("a.url"), text));
    QTEST(int(read.status), "status");
    QTEST(read.address, "address");
}

void TestLayerFunctions::urlFileThatIsMissing()
{
    QCOMPARE(readUrlFile(folder.path(QStringLiteral("none.url"))).status, UrlFile::Status::CannotOpen);
    QCOMPARE(readUrlFile(folder.path(QString())).status, UrlFile::Status::CannotOpen);
}

void TestLayerFunctions::gigaPixels_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<QString>("text");
    QTest::newRow("small") << 20000U << 20000U << QStringLiteral("< 1 GP");
    QTest::newRow("product beyond 32 bits") << 40000U << 40000U << QStringLiteral("1.60 GP");
    QTest::newRow("just one") << 31623U << 31623U << QStringLiteral("1.00 GP");
    QTest::newRow("just below one") << 31622U << 31622U << QStringLiteral("< 1 GP");
    QTest::newRow("largest") << 4294967295U << 4294967295U << QStringLiteral("18446744065.12 GP");
}

void TestLayerFunctions::gigaPixels()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QTEST(gigaPixelText(width, height), "text");
}

void TestLayerFunctions::description_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("text");
    QTest::newRow("path") << QStringLiteral("/maps/image.jp2") << QStringLiteral("image.jp2");
    QTest::newRow("bar") << QStringLiteral("/maps/image.jp2|extra") << QStringLiteral("image.jp2");
    QTest::newRow("bar in front stays") << QStringLiteral("/maps/|extra") << QStringLiteral("|extra");
    QTest::newRow("address") << QStringLiteral("xrvp://server/maps/site.xrv") << QStringLiteral("site.xrv");
}

void TestLayerFunctions::description()
{
    QFETCH(QString, source);
    QTEST(sourceDescription(source), "text");
}

void TestLayerFunctions::widenedNamesAreFoundAgain()
{
    const QString file = folder.writeText(QString::fromUtf8("\xc3\x9c"
                                                            "bersicht \xe6\x9d\xb1.jp2"),
                                          "x");
    const QString widened = widenedName(file.toStdString());
    QVERIFY(widened != file);
    QCOMPARE(localFileName(widened), file);
    QCOMPARE(localFileName(file), file);
    const QString missing = folder.path(QString::fromUtf8("f\xc3\xbcr.jp2"));
    QCOMPARE(localFileName(missing), missing);
}

void TestLayerFunctions::toneTable_data()
{
    QTest::addColumn<double>("contrast");
    QTest::addColumn<double>("brightness");
    QTest::addColumn<int>("at0");
    QTest::addColumn<int>("at100");
    QTest::addColumn<int>("at255");
    QTest::newRow("neutral") << 1.0 << 1.0 << 0 << 100 << 255;
    QTest::newRow("all white") << 1.0 << 2.0 << 255 << 255 << 255;
    QTest::newRow("all black") << 1.0 << 0.0 << 0 << 0 << 0;
    QTest::newRow("half a range brighter, truncated") << 1.0 << 1.5 << 127 << 227 << 255;
    QTest::newRow("flat") << 0.0 << 1.0 << 127 << 127 << 127;
    QTest::newRow("steep") << 2.0 << 1.0 << 0 << 72 << 255;
    QTest::newRow("negative") << -1.0 << 1.0 << 255 << 155 << 0;
    QTest::newRow("not a number") << kNan << kNan << 0 << 0 << 0;
}

void TestLayerFunctions::toneTable()
{
    QFETCH(double, contrast);
    QFETCH(double, brightness);
    const ToneTable table = makeToneTable(contrast, brightness);
    QTEST(int(table[0]), "at0");
    QTEST(int(table[100]), "at100");
    QTEST(int(table[255]), "at255");
    QRgb pixel = qRgba(0, 100, 255, 77);
    applyToneTable(table, &pixel, &pixel, 1);
    QCOMPARE(pixel, qRgba(table[0], table[100], table[255], 77));
}

void TestLayerFunctions::clips_data()
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
    // The window's rows go from high to low, those of the image from low to high.
    QTest::newRow("within a cell of an image that is south up")
        << kSouthUp << ClippedView{100, 100, 300.25, 700.75, 300.75, 700.25}
        << ClippedView{199, 199, 300, 701, 301, 700};
    QTest::newRow("within an image whose columns run to the left")
        << gridOf(1000, 800, -1, -1, 1000, 0) << ClippedView{200, 100, 500.5, -10, 300.5, -110}
        << ClippedView{201, 100, 501, -10, 300, -110};
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

void TestLayerFunctions::clips()
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

void TestLayerFunctions::refuses_data()
{
    QTest::addColumn<ImageGrid>("grid");
    QTest::addColumn<ClippedView>("requested");

    QTest::newRow("left of the image") << kPlain << ClippedView{100, 100, -200, 0, -100, -100};
    QTest::newRow("right of the image") << kPlain << ClippedView{100, 100, 1001, 0, 1101, -100};
    QTest::newRow("above, north up") << kPlain << ClippedView{100, 100, 0, 200, 100, 100};
    QTest::newRow("below, north up") << kPlain << ClippedView{100, 100, 0, -801, 100, -901};
    QTest::newRow("above, south up") << kSouthUp << ClippedView{100, 100, 0, -200, 100, -100};
    QTest::newRow("below, south up") << kSouthUp << ClippedView{100, 100, 0, 801, 100, 901};
    QTest::newRow("beside, columns run to the left")
        << gridOf(1000, 800, -1, -1, 1000, 0) << ClippedView{100, 100, 1001, 0, 1101, -100};
    QTest::newRow("less than a pixel") << kPlain << ClippedView{100, 100, -1e6, 1e6, 1e6, -1e6};
    QTest::newRow("no width") << kPlain << ClippedView{100, 100, 10, -10, 10, -20};
    QTest::newRow("no height") << kPlain << ClippedView{100, 100, 10, -10, 20, -10};
    QTest::newRow("no pixels") << kPlain << ClippedView{0, 0, 0, 0, 1000, -800};
    QTest::newRow("not a number") << kPlain << ClippedView{100, 100, kNan, kNan, kNan, kNan};
    QTest::newRow("one corner not a number") << kPlain << ClippedView{100, 100, 0, 0, kNan, -800};
    QTest::newRow("infinite") << kPlain << ClippedView{100, 100, -kInfinity, kInfinity, kInfinity, -kInfinity};
    QTest::newRow("cells without extent") << gridOf(10, 10, 0, 0, 0, 0) << ClippedView{100, 100, -5, 5, 5, -5};
}

void TestLayerFunctions::refuses()
{
    QFETCH(ImageGrid, grid);
    QFETCH(ClippedView, requested);
    QVERIFY(!clipView(grid, requested).has_value());
}

void TestLayerFunctions::hugePictures_data()
{
    QTest::addColumn<ClippedView>("view");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("the largest") << ClippedView{8192, 8192, 0, 0, 2, -2} << QSize(8192, 8192);
    QTest::newRow("four cells, 4,100 pixels each") << ClippedView{8200, 8200, 0, 0, 2, -2} << QSize(4096, 4096);
    QTest::newRow("three cells across") << ClippedView{12300, 8200, 0, 0, 3, -2} << QSize(5016, 3344);
    QTest::newRow("one side is too long") << ClippedView{65537, 10, 0, 0, 3, -1} << QSize(65535, 10);
    QTest::newRow("millions of pixels a cell") << ClippedView{2147483647, 2147483647, 0, 0, 1, -1} << QSize(4096, 4096);
    QTest::newRow("more cells than pixels") << ClippedView{20000, 20000, 0, 0, 10000, -10000} << QSize(4096, 4096);
}

void TestLayerFunctions::hugePictures()
{
    QFETCH(ClippedView, view);
    QTEST(decodedSize(kPlain, view), "expected");
}

QTEST_GUILESS_MAIN(TestLayerFunctions)
#include "tst_layerfunctions.moc"
