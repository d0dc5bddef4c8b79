#include "data/files.h"
#include "data/jp2maker.h"
#include "data/views.h"

#include <QtTest>

#include <atomic>
#include <limits>
#include <thread>

/// PLK::CView on real files.
class TestView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void opensByNarrowAndWideName();
    void failedOpenLeavesItClosed();
    void refusesWhatIsNoView_data();
    void refusesWhatIsNoView();
    void showsCells();
    void transformsStretchCells();
    void defaultBands_data();
    void defaultBands();
    void progressiveViewArrives();
    void opacityIsAskedForAtTheFirstLine();
    void closeWithinACallbackIsRefused();
    void closeWhileDecoding();
    void storm();

private:
    std::string write(const std::string &name, const jp2maker::Options &options) const
    {
        return folder.write(name, jp2maker::make(options));
    }
    FileFolder folder;
    std::string colour, deep, large;
};

void TestView::initTestCase()
{
    jp2maker::Options options;
    options.components.resize(3);
    options.cell = [](int component, int x, int y) { return component == 0 ? x : component == 1 ? y : 50; };
    colour = write("Übersicht 東京.jp2", options);
    options.components.assign(1, jp2maker::Component{12});
    options.cell = [](int, int x, int y) { return 1000 + x + y; };
    deep = write("deep.jp2", options);
    options.components.assign(1, jp2maker::Component{});
    options.width = options.height = 2048;
    options.tileWidth = options.tileHeight = 256;
    options.levels = 5;
    options.cell = [](int, int x, int y) { return (x * 37 ^ y * 61) & 255; };
    large = write("large.jp2", options);
}

void TestView::opensByNarrowAndWideName()
{
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(colour.c_str()), false, false));
    const std::string name = view.GetFileName();
    QCOMPARE(name, colour);
    QVERIFY(!view.Open(QString::fromStdString(colour).toStdWString().c_str(), true, false));
    QVERIFY(view.IsProgressive());
    // The name as callers keep it: its bytes, each widened.
    QVERIFY(!view.Open(QString::fromLatin1(name.c_str()).toStdWString().c_str(), false, false));
    QCOMPARE(view.GetFileName(), colour);
    QVERIFY(!view.IsProgressive());
    QVERIFY(!view.Close(true));
    QVERIFY(!view.IsOpen());
    QVERIFY(!view.Close(true));
}

void TestView::failedOpenLeavesItClosed()
{
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(colour.c_str()), false, false));
    const PLK::CError error = view.Open(PLK::CString("/no/such/file.jp2"), false, false);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_NOT_FOUND));
    QVERIFY(*error.GetErrorMessage() != '\0');
    QVERIFY(!view.IsOpen());
    QCOMPARE(setView(view, {1, 1, 0, 0, 1, -1}, {0}).GetErrorNumber(), int(PLK_ERR_NOT_OPEN));
    std::uint32_t pixel;
    QCOMPARE(view.ReadLineBGRA(&pixel), PLK_READ_FAILED);
    QCOMPARE(view.GetLastError().GetErrorNumber(), int(PLK_ERR_NOT_OPEN));
    QCOMPARE(int(view.GetPercentComplete()), 100);
    QVERIFY(!view.IsViewSet());
    QCOMPARE(view.Open(static_cast<const wchar_t *>(nullptr), false, false).IsSuccess(), false);
    QCOMPARE(view.Open(PLK::CString(colour.c_str()), false, true).GetErrorNumber(), int(PLK_ERR_INVALID_ARGUMENT));
}

void TestView::refusesWhatIsNoView_data()
{
    QTest::addColumn<std::vector<int>>("bands");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<double>("x2");
    using Bands = std::vector<int>;
    QTest::newRow("no band") << Bands{} << 10 << 10 << 10.0;
    QTest::newRow("five bands") << Bands{0, 1, 2, 0, 1} << 10 << 10 << 10.0;
    QTest::newRow("band past the last") << Bands{3} << 10 << 10 << 10.0;
    QTest::newRow("negative band") << Bands{-1} << 10 << 10 << 10.0;
    QTest::newRow("no width") << Bands{0} << 0 << 10 << 10.0;
    QTest::newRow("too high") << Bands{0} << 10 << 65536 << 10.0;
    QTest::newRow("empty rectangle") << Bands{0} << 10 << 10 << 0.0;
    QTest::newRow("not a number") << Bands{0} << 10 << 10 << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinite") << Bands{0} << 10 << 10 << std::numeric_limits<double>::infinity();
}

void TestView::refusesWhatIsNoView()
{
    QFETCH(std::vector<int>, bands);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(double, x2);
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(colour.c_str()), false, false));
    QVERIFY(!setView(view, {64, 64, 0, 0, 64, -64}, {0, 1, 2}));
    const PLK::CError error = setView(view, {width, height, 0, 0, x2, -10}, bands);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_INVALID_ARGUMENT));
    // The last view is still there.
    QCOMPARE(view.GetSetViewInfo().nSizeX, 64u);
    std::vector<std::uint32_t> line(64);
    QCOMPARE(view.ReadLineBGRA(line.data()), PLK_READ_SUCCESS);
}

void TestView::showsCells()
{
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(colour.c_str()), false, false));
    // World rows run upwards; the rectangle reaches beyond the image to the left and below.
    QVERIFY(!setView(view, {20, 10, -4, -59, 16, -69}, {0, 1, 2}));
    std::uint8_t line[20][4];
    for (int y = 0; y < 10; ++y) {
        QCOMPARE(view.ReadLineBGRA(line), PLK_READ_SUCCESS);
        for (int x = 0; x < 20; ++x) {
            const bool isInside = x >= 4 && y < 5;
            QCOMPARE(int(line[x][3]), isInside ? 255 : 0);
            QCOMPARE(int(line[x][2]), isInside ? x - 4 : 0);
            QCOMPARE(int(line[x][1]), isInside ? 59 + y : 0);
            QCOMPARE(int(line[x][0]), isInside ? 50 : 0);
        }
    }
    std::uint8_t red[20], green[20], blue[20], untouched[20] = {7};
    std::uint8_t *const lines[4] = {red, green, blue, untouched};
    QCOMPARE(view.ReadLineBIL(lines, PLKCT_UINT8), PLK_READ_SUCCESS);
    QCOMPARE(int(red[19]), 15);
    QCOMPARE(int(green[19]), 59);
    QCOMPARE(int(untouched[0]), 7);
    QCOMPARE(view.ReadLineBGRA(nullptr), PLK_READ_FAILED);
}

void TestView::transformsStretchCells()
{
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(deep.c_str()), false, false));
    const unsigned bands[] = {0};
    std::vector<std::unique_ptr<PLK::API::CMinMaxTransform>> transforms;
    QVERIFY(!view.CalculateMinMaxTransforms(1, bands, &transforms, 100.0, 100));
    QCOMPARE(transforms.size(), std::size_t(1));
    QCOMPARE(transforms[0]->GetMin(), 1000.0);
    QCOMPARE(transforms[0]->GetMax(), 1126.0);
    QVERIFY(!view.SetTransform(0, std::move(transforms[0])));
    QCOMPARE(view.SetTransform(1, std::make_unique<PLK::API::CMinMaxTransform>()).GetErrorNumber(),
             int(PLK_ERR_INVALID_ARGUMENT));
    const auto redAt = [&](double column) {
        std::uint8_t pixel[4];
        if (setView(view, {1, 1, column, 0, column + 1, -1}, {0}) || view.ReadLineBGRA(pixel) != PLK_READ_SUCCESS)
            return -1;
        return int(pixel[2]);
    };
    QCOMPARE(redAt(0), 0);
    QCOMPARE(redAt(63), 128); // 63 of 126
    QVERIFY(!view.ClearTransforms());
    QCOMPARE(redAt(63), 1063 >> 4);
    const unsigned missing[] = {1};
    QVERIFY(view.CalculateMinMaxTransforms(1, missing, &transforms, 99.0, 100));
}

void TestView::defaultBands_data()
{
    QTest::addColumn<int>("components");
    QTest::addColumn<bool>("opacity");
    QTest::addColumn<std::vector<std::uint32_t>>("expected");
    using Bands = std::vector<std::uint32_t>;
    QTest::newRow("grey") << 1 << false << Bands{};
    QTest::newRow("grey with opacity") << 2 << true << Bands{};
    QTest::newRow("colour") << 3 << false << Bands{0, 1, 2};
    QTest::newRow("colour with opacity") << 4 << true << Bands{0, 1, 2, 3};
}

void TestView::defaultBands()
{
    QFETCH(int, components);
    QFETCH(std::vector<std::uint32_t>, expected);
    QFETCH(bool, opacity);
    jp2maker::Options options;
    options.components.resize(static_cast<std::size_t>(components));
    options.opacityLast = opacity;
    const std::string name = write("bands.jp2", options);
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(name.c_str()), false, false));
    std::vector<std::uint32_t> bands;
    const PLK::CError error = view.GetDefaultRGBABandList(&bands);
    QCOMPARE(error.GetErrorNumber(), expected.empty() ? int(PLK_ERR_NOT_AVAILABLE) : 0);
    QCOMPARE(bands, expected);
}

void TestView::progressiveViewArrives()
{
    ProgressiveView view;
    QVERIFY(!view.Open(PLK::CString(large.c_str()), true, false));
    QVERIFY(!setView(view, {600, 400, 100, -200, 700, -600}, {0, 0, 0}));
    QVERIFY(view.waitForLast());
    const std::vector<std::uint32_t> picture = view.picture();
    const auto pixel = [&](int x, int y) { return int(picture[static_cast<std::size_t>(y * 600 + x)] & 255); };
    QCOMPARE(pixel(0, 0), (100 * 37 ^ 200 * 61) & 255);
    QCOMPARE(pixel(599, 399), (699 * 37 ^ 599 * 61) & 255);
    QCOMPARE(int(view.GetPercentComplete()), 100);
    QCOMPARE(view.GetAllBlocksAvailable(), view.GetAllBlocksInView());
    QVERIFY(view.GetAllBlocksInView() > 0);
}

/// Callers switch scaling on as they begin to read, which may be after the view was set.
void TestView::opacityIsAskedForAtTheFirstLine()
{
    jp2maker::Options options;
    options.components = {{8}, {8}, {8}, {1}};
    options.opacityLast = true;
    options.cell = [](int component, int, int) { return component == 3 ? 1 : 9; };
    const std::string name = write("opacity.jp2", options);
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(name.c_str()), false, false));
    QVERIFY(!setView(view, {2, 2, 0, 0, 2, -2}, {0, 1, 2, 3}));
    view.ParametersDecompress().SetAutoscaleOpacitybandUpEnabled(true);
    std::uint8_t line[2][4];
    QCOMPARE(view.ReadLineBGRA(line), PLK_READ_SUCCESS);
    QCOMPARE(int(line[0][3]), 255);
}

void TestView::closeWithinACallbackIsRefused()
{
    class Closer : public PLK::CView
    {
    public:
        ~Closer() override { Close(true); }
        PLKReadStatus RefreshPass(PLKSetViewInfo *) override
        {
            code = Close(false).GetErrorNumber();
            return PLK_READ_SUCCESS;
        }
        std::atomic<int> code{-1};
    };
    Closer view;
    QVERIFY(!view.Open(PLK::CString(colour.c_str()), true, false));
    QVERIFY(!setView(view, {8, 8, 0, 0, 8, -8}, {0}));
    QTRY_COMPARE(view.code.load(), int(PLK_ERR_INVALID_ARGUMENT));
    QVERIFY(view.IsOpen());
}

/// Before anything is there, with the first blocks, and after the first pass. What called back later would find no
/// view.
void TestView::closeWhileDecoding()
{
    for (int i = 0; i < 12; ++i) {
        ProgressiveView view;
        QVERIFY(!view.Open(PLK::CString(large.c_str()), true, false));
        QVERIFY(!setView(view, {1024, 1024, 0, 0, 2048, -2048}, {0}));
        const auto isFarEnough = [&] {
            return i % 3 == 0 || (i % 3 == 1 ? view.GetAllBlocksAvailable() > 0 : view.passes() > 0);
        };
        while (!isFarEnough())
            std::this_thread::yield();
        QVERIFY(!view.Close(true));
        QVERIFY(!view.IsClosePending());
    }
}

/// Opening, showing, reading and closing as fast as it goes while passes run: for the thread sanitizer.
void TestView::storm()
{
    ProgressiveView view;
    std::vector<std::uint32_t> line(300);
    for (int round = 0; round < 15; ++round) {
        QVERIFY(!view.Open(PLK::CString((round % 3 == 0 ? colour : large).c_str()), round % 4 != 3, false));
        std::atomic<bool> isOver{false};
        std::thread onlooker([&] {
            while (!isOver) {
                view.GetSetViewInfo();
                view.GetPercentComplete();
                view.IsReadCancelPending();
                std::this_thread::yield();
            }
        });
        bool isRight = true;
        for (int i = 0; i < 12 && isRight; ++i) {
            const double x = i * 97 % 1500, y = -(i * 61 % 1500), size = 300 << i % 3;
            isRight = setView(view, {300, 300, x, y, x + size, y - size}, {0, 0, 0}).IsSuccess();
            if (i % 3 == 0)
                isRight = isRight && view.ReadLineBGRA(line.data()) != PLK_READ_FAILED;
            if (i % 5 == 4)
                view.CancelReads();
            else if (i % 4 == 0 && view.IsProgressive())
                isRight = isRight && view.waitForLast();
        }
        isOver = true;
        onlooker.join();
        QVERIFY(isRight);
    }
}

QTEST_APPLESS_MAIN(TestView)
#include "tst_view.moc"
