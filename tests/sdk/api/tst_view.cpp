#include "data/jp2maker.h"

#include <xrv60/plkview.h>

#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <condition_variable>
#include <limits>
#include <mutex>
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
    std::string write(const QString &name, const jp2maker::Options &options);

    QTemporaryDir folder;
    std::string colour, deep, large;
};

namespace {

using namespace std::chrono_literals;

/// Reads each pass.
class ProgressiveView : public PLK::CView
{
public:
    ~ProgressiveView() override { Close(true); }

    PLKReadStatus RefreshPass(PLKSetViewInfo *info) override
    {
        if (IsReadCancelPending() || IsClosePending())
            return PLK_READ_CANCELLED;
        std::vector<std::uint32_t> pixels(std::size_t(info->nSizeX) * info->nSizeY);
        for (std::size_t y = 0; y < info->nSizeY; ++y) {
            const PLKReadStatus status = ReadLineBGRA(pixels.data() + y * info->nSizeX);
            if (status != PLK_READ_SUCCESS)
                return status;
        }
        const std::lock_guard<std::mutex> lock(mutex);
        picture.swap(pixels);
        generation = info->nGeneration;
        percent = GetPercentComplete();
        changed.notify_all();
        return PLK_READ_SUCCESS;
    }
    bool waitForLast()
    {
        const std::uint64_t wanted = GetSetViewInfo().nGeneration;
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, 30s, [&] { return generation == wanted && percent == 100; });
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::uint32_t> picture;
    std::uint64_t generation = 0;
    int percent = 0;
};

PLK::CError show(PLK::CView &view, const std::vector<int> &bands, int width, int height, double x1, double y1,
                 double x2, double y2)
{
    return view.SetView(static_cast<int>(bands.size()), bands.data(), width, height, x1, y1, x2, y2);
}

} // namespace

std::string TestView::write(const QString &name, const jp2maker::Options &options)
{
    const jp2maker::FileBytes bytes = jp2maker::make(options);
    QFile file(folder.filePath(name));
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write test data");
    file.write(reinterpret_cast<const char *>(bytes.data()), static_cast<qint64>(bytes.size()));
    return file.fileName().toStdString();
}

void TestView::initTestCase()
{
    QVERIFY(folder.isValid());
    jp2maker::Options options;
    options.components.resize(3);
    options.cell = [](int component, int x, int y) { return component == 0 ? x : component == 1 ? y : 50; };
    colour = write(QStringLiteral("Übersicht 東京.jp2"), options);
    options.components.assign(1, jp2maker::Component{12});
    options.cell = [](int, int x, int y) { return 1000 + x + y; };
    deep = write(QStringLiteral("deep.jp2"), options);
    options.components.assign(1, jp2maker::Component{});
    options.width = options.height = 2048;
    options.tileWidth = options.tileHeight = 256;
    options.levels = 5;
    options.cell = [](int, int x, int y) { return (x * 37 ^ y * 61) & 255; };
    large = write(QStringLiteral("large.jp2"), options);
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
    QCOMPARE(show(view, {0}, 1, 1, 0, 0, 1, -1).GetErrorNumber(), int(PLK_ERR_NOT_OPEN));
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
    QVERIFY(!show(view, {0, 1, 2}, 64, 64, 0, 0, 64, -64));
    const PLK::CError error = show(view, bands, width, height, 0, 0, x2, -10);
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
    QVERIFY(!show(view, {0, 1, 2}, 20, 10, -4, -59, 16, -69));
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
    const auto redAt = [&](int column) {
        std::uint8_t pixel[4];
        if (show(view, {0}, 1, 1, column, 0, column + 1, -1) || view.ReadLineBGRA(pixel) != PLK_READ_SUCCESS)
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
    const std::string name = write(QStringLiteral("bands.jp2"), options);
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
    QVERIFY(!show(view, {0, 0, 0}, 600, 400, 100, -200, 700, -600));
    QVERIFY(view.waitForLast());
    const auto pixel = [&](int x, int y) { return int(view.picture[static_cast<std::size_t>(y * 600 + x)] & 255); };
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
    const std::string name = write(QStringLiteral("opacity.jp2"), options);
    PLK::CView view;
    QVERIFY(!view.Open(PLK::CString(name.c_str()), false, false));
    QVERIFY(!show(view, {0, 1, 2, 3}, 2, 2, 0, 0, 2, -2));
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
    QVERIFY(!show(view, {0}, 8, 8, 0, 0, 8, -8));
    QTRY_COMPARE(view.code.load(), int(PLK_ERR_INVALID_ARGUMENT));
    QVERIFY(view.IsOpen());
}

void TestView::closeWhileDecoding()
{
    for (int i = 0; i < 10; ++i) {
        ProgressiveView view;
        QVERIFY(!view.Open(PLK::CString(large.c_str()), true, false));
        QVERIFY(!show(view, {0}, 1024, 1024, 0, 0, 2048, -2048));
        std::this_thread::sleep_for(std::chrono::milliseconds(i));
        QVERIFY(!view.Close(true));
        QVERIFY(!view.IsClosePending());
        const std::uint64_t seen = view.generation;
        QTest::qSleep(2);
        QCOMPARE(view.generation, seen);
    }
}

/// Opening, showing and closing as fast as it goes while passes run.
void TestView::storm()
{
    ProgressiveView view;
    std::vector<std::uint32_t> line(300);
    for (int round = 0; round < 15; ++round) {
        QVERIFY(!view.Open(PLK::CString((round % 3 == 0 ? colour : large).c_str()), round % 4 != 3, false));
        for (int i = 0; i < 12; ++i) {
            const double x = i * 97 % 1500, y = -(i * 61 % 1500), size = 300 << i % 3;
            QVERIFY(!show(view, {0, 0, 0}, 300, 300, x, y, x + size, y - size));
            if (i % 3 == 0)
                QVERIFY(view.ReadLineBGRA(line.data()) != PLK_READ_FAILED);
            if (i % 5 == 4)
                view.CancelReads();
            if (i % 4 == 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(i));
        }
        if (round % 5 == 0 && view.IsProgressive())
            QVERIFY(view.waitForLast());
    }
}

QTEST_APPLESS_MAIN(TestView)
#include "tst_view.moc"
