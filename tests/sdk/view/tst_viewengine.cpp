#include "viewsupport.h"

#include "data/latch.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace std::chrono_literals;

/// What views promise of threads, passes, progress and memory.
class TestViewEngine : public QObject
{
    Q_OBJECT

private slots:
    void slowViewsBeginCoarse_data();
    void slowViewsBeginCoarse();
    void passesFollowCosts_data();
    void passesFollowCosts();
    void linesBelongToThePass();
    void heldUpCallbackHoldsUpNobody();
    void decodingIsCancelledByANewerView();
    void stopWaitsForTheCallback();
    void cancelEndsTheView();
    void listenerMayEndTheView();
    void sameViewComesAgainFromWhatIsThere();
    void refreshTimeSkipsPassesButTheFinalOne();
    void failureIsToldWithTheFinalPass();
    void failureIsKeptWithABlockingView();
    void blockingViewIsReadAgainWithoutDecoding();
    void blockingProgressEndsWithTheLastLine();
    void blockingReadIsCancelledFromElsewhere();
    void blockingTimeIsWaitedForFirstLines();
    void hugeViewIsReadInStrips();
};

namespace {

/// What a pass brought.
struct SeenPass
{
    std::uint64_t generation;
    PLKReadStatus status;
    std::uint32_t firstPixel;
    int percent;
    std::uint64_t blocks, blocksInView;
};

/// Reads every pass, as callers do, and keeps what it saw.
class Recorder : public xrv::PassListener
{
public:
    PLKReadStatus passReady(PLKSetViewInfo *info) override
    {
        if (before)
            before(*info);
        const auto lines = readBgra(*engine);
        const std::lock_guard<std::mutex> lock(mutex);
        passes.push_back({info->nGeneration, lines.status, lines.at(0, 0), engine->percent(),
                          engine->cacheTiles().available, engine->cacheTiles().inView});
        changed.notify_all();
        return answer;
    }
    /// Waits for \a count passes in all.
    bool waitFor(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, 20s, [&] { return passes.size() >= count; });
    }
    bool waitForGeneration(std::uint64_t generation)
    {
        std::unique_lock<std::mutex> lock(mutex);
        return changed.wait_for(lock, 20s, [&] {
            return !passes.empty() && passes.back().generation >= generation && passes.back().percent == 100;
        });
    }
    std::vector<SeenPass> seen()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return passes;
    }

    xrv::ViewEngine *engine = nullptr;
    std::function<void(const PLKSetViewInfo &)> before;
    PLKReadStatus answer = PLK_READ_SUCCESS;

private:
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<SeenPass> passes;
};

/// A progressive view of an image whose cells tell their level.
struct Stage
{
    explicit Stage(std::uint32_t size = 1024)
        : reader(size, size)
        , image(reader)
    {
        reader.cell = [](int, int level, std::int64_t, std::int64_t) { return level; };
        engine = std::make_unique<xrv::ViewEngine>(image.source(), true, recorder);
        recorder.engine = engine.get();
    }
    ~Stage() { engine->stop(); }

    /// The costs of level 0, 1, ... in milliseconds; the last one holds for the rest.
    void setCosts(std::vector<double> costs)
    {
        reader.costOf = [costs](const xrv::ReadRequest &request) {
            const std::size_t level = std::min(static_cast<std::size_t>(request.level), costs.size() - 1);
            return xrv::ReadCost{40, 8, costs[level]};
        };
    }
    void show(double x, double y, int size = 64)
    {
        engine->setView(image.view({0}, size, size, {x, y, x + size, y + size}));
    }

    FakeReader reader;
    Image image;
    Recorder recorder;
    std::unique_ptr<xrv::ViewEngine> engine;
};

} // namespace

void TestViewEngine::slowViewsBeginCoarse_data()
{
    QTest::addColumn<std::vector<double>>("costs");
    QTest::addColumn<std::vector<int>>("levels"); // of the passes
    QTest::newRow("quick") << std::vector<double>{1} << std::vector<int>{0};
    QTest::newRow("slow") << std::vector<double>{100, 25, 7, 2} << std::vector<int>{2, 0};
}

void TestViewEngine::slowViewsBeginCoarse()
{
    QFETCH(std::vector<double>, costs);
    QFETCH(std::vector<int>, levels);
    Stage stage;
    stage.setCosts(costs);
    QCOMPARE(stage.engine->percent(), 100);
    QCOMPARE(stage.engine->viewInfo().nSizeX, 0u);
    stage.show(10, 10);
    QVERIFY(stage.recorder.waitForGeneration(1));
    stage.engine->stop();
    const std::vector<SeenPass> seen = stage.recorder.seen();
    QCOMPARE(seen.size(), levels.size());
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const bool isLast = i + 1 == seen.size();
        QCOMPARE(seen[i].status, PLK_READ_SUCCESS);
        QCOMPARE(bytesOf(seen[i].firstPixel), grey(levels[i]));
        QCOMPARE(seen[i].percent == 100, isLast);
        QCOMPARE(seen[i].blocks, std::uint64_t(isLast ? 40 : 8));
        QCOMPARE(seen[i].blocksInView, std::uint64_t(40));
    }
}

void TestViewEngine::passesFollowCosts_data()
{
    QTest::addColumn<std::vector<double>>("costs");
    QTest::addColumn<double>("factor");
    QTest::addColumn<bool>("cached");
    QTest::addColumn<std::vector<int>>("expected");
    using Costs = std::vector<double>;
    using Levels = std::vector<int>;
    QTest::newRow("just quick enough") << Costs{29, 8, 3} << 1.0 << false << Levels{0};
    QTest::newRow("just too slow") << Costs{31, 8, 3} << 1.0 << false << Levels{1, 0};
    QTest::newRow("all blocks are there") << Costs{500, 100, 30} << 1.0 << true << Levels{0};
    QTest::newRow("first level soon enough") << Costs{240, 60, 15, 5} << 1.0 << false << Levels{2, 0};
    QTest::newRow("passes between") << Costs{2000, 500, 120, 30, 8, 2} << 1.0 << false << Levels{4, 2, 1, 0};
    QTest::newRow("a machine slower than thought") << Costs{20, 8, 3} << 4.0 << false << Levels{2, 0};
    QTest::newRow("a quicker one") << Costs{80, 40, 20} << 0.2 << false << Levels{0};
    QTest::newRow("every level dear, the cheapest first")
        << Costs{900, 400, 300, 310, 305} << 1.0 << false << Levels{2, 0};
    QTest::newRow("no other level") << Costs{900} << 1.0 << false << Levels{0};
}

void TestViewEngine::passesFollowCosts()
{
    QFETCH(std::vector<double>, costs);
    QFETCH(double, factor);
    QFETCH(bool, cached);
    QFETCH(std::vector<int>, expected);
    std::vector<int> levels;
    for (std::size_t level = 0; level < costs.size(); ++level)
        levels.push_back(static_cast<int>(level));
    xrv::PassPlanner planner(
        levels,
        [&](int level) {
            return xrv::ReadCost{10, cached ? 10u : 9u, costs[static_cast<std::size_t>(level)]};
        },
        [=](double estimated) { return estimated * factor; });
    std::vector<int> found;
    for (const xrv::Pass &pass : planner.plan())
        found.push_back(pass.level);
    QCOMPARE(found, expected);
}

/// Lines start at the top in every pass, and between passes they are those of the last one.
void TestViewEngine::linesBelongToThePass()
{
    Stage stage;
    stage.setCosts({100, 5});
    stage.reader.cell = [](int, int level, std::int64_t, std::int64_t v) { return (v << level) < 32 ? 9 : level; };
    // A caller that reads some line of each pass beforehand and so does not end at the last one.
    stage.recorder.before = [&](const PLKSetViewInfo &info) {
        readLine(*stage.engine, std::vector<std::uint32_t>(info.nSizeX).data());
    };
    Latch coarseIsOver, goOn;
    stage.reader.onRead = [&](const xrv::ReadRequest &request) {
        if (request.level == 0) {
            coarseIsOver.open();
            goOn.wait();
        }
        return PLK::CError();
    };
    stage.show(0, 0);
    QVERIFY(coarseIsOver.wait());
    const auto between = readBgra(*stage.engine);
    QCOMPARE(bytesOf(between.at(0, 0)), grey(9));
    QCOMPARE(bytesOf(between.at(0, 63)), grey(1));
    goOn.open();
    QVERIFY(stage.recorder.waitForGeneration(1));
    stage.engine->stop();
    for (const SeenPass &pass : stage.recorder.seen())
        QCOMPARE(bytesOf(pass.firstPixel), grey(9));
}

/// The caller sets views with a lock held that its callback takes.
void TestViewEngine::heldUpCallbackHoldsUpNobody()
{
    Stage stage;
    stage.setCosts({1.0});
    std::mutex callersLock;
    Latch callbackRuns;
    stage.recorder.before = [&](const PLKSetViewInfo &info) {
        if (info.nGeneration != 1)
            return;
        callbackRuns.open();
        const std::lock_guard<std::mutex> lock(callersLock);
    };
    std::unique_lock<std::mutex> lock(callersLock);
    stage.show(0, 0);
    QVERIFY(callbackRuns.wait());
    QVERIFY(!stage.engine->isCancelPending());
    QElapsedTimer timer;
    timer.start();
    stage.show(100, 100);
    stage.show(200, 200);
    QVERIFY2(timer.elapsed() < 1000, "SetView waited for the callback");
    QVERIFY(!stage.engine->isCancelPending());
    QCOMPARE(stage.engine->viewInfo().nGeneration, std::uint64_t(3));
    lock.unlock();
    QVERIFY(stage.recorder.waitForGeneration(3));
    stage.engine->stop();
    const std::vector<SeenPass> seen = stage.recorder.seen();
    QCOMPARE(seen.size(), std::size_t(2));
    QCOMPARE(seen[0].generation, std::uint64_t(1));
    QCOMPARE(seen[0].status, PLK_READ_CANCELLED);
    QCOMPARE(seen[1].generation, std::uint64_t(3));
    QCOMPARE(seen[1].status, PLK_READ_SUCCESS);
}

void TestViewEngine::decodingIsCancelledByANewerView()
{
    Stage stage;
    stage.setCosts({1.0});
    Latch decoding;
    std::atomic<bool> wasCancelled{false};
    stage.reader.onRead = [&](const xrv::ReadRequest &request) {
        if (request.datasetRect.x0 != 0)
            return PLK::CError();
        decoding.open();
        wasCancelled = waitUntil([&] { return request.cancel.isRaised(); });
        return PLK::CError(PLK_ERR_CANCELLED, "Reading was cancelled.");
    };
    stage.show(0, 0);
    QVERIFY(decoding.wait());
    stage.show(100, 100);
    QVERIFY(stage.recorder.waitForGeneration(2));
    QVERIFY(wasCancelled);
    QCOMPARE(stage.recorder.seen().size(), std::size_t(1));
    QVERIFY(!stage.engine->lastError());
}

void TestViewEngine::stopWaitsForTheCallback()
{
    Stage stage;
    stage.setCosts({1.0});
    Latch callbackRuns;
    std::atomic<bool> cancelSeen{false}, callbackEnds{false};
    stage.recorder.before = [&](const PLKSetViewInfo &) {
        callbackRuns.open();
        cancelSeen = waitUntil([&] { return stage.engine->isCancelPending(); });
        letOthersRun();
        callbackEnds = true;
    };
    stage.show(0, 0);
    QVERIFY(callbackRuns.wait());
    stage.engine->stop();
    QVERIFY(callbackEnds);
    QVERIFY(cancelSeen);
    QCOMPARE(stage.recorder.seen().size(), std::size_t(1));
    QCOMPARE(stage.recorder.seen()[0].status, PLK_READ_CANCELLED);
    stage.show(100, 100); // is not taken on any more
    QCOMPARE(readBgra(*stage.engine).status, PLK_READ_CANCELLED);
}

void TestViewEngine::cancelEndsTheView()
{
    Stage stage;
    stage.setCosts({100, 5});
    stage.recorder.before = [&](const PLKSetViewInfo &info) {
        if (info.nGeneration == 1)
            stage.engine->cancelReads();
    };
    stage.show(0, 0);
    QVERIFY(stage.recorder.waitFor(1));
    QVERIFY(stage.engine->isCancelPending());
    stage.show(100, 100);
    QVERIFY(!stage.engine->isCancelPending());
    QVERIFY(stage.recorder.waitForGeneration(2));
    const std::vector<SeenPass> seen = stage.recorder.seen();
    QCOMPARE(seen[0].status, PLK_READ_CANCELLED);
    QCOMPARE(seen[1].generation, std::uint64_t(2)); // no second pass of the first view
}

void TestViewEngine::listenerMayEndTheView()
{
    Stage stage;
    stage.setCosts({100, 5});
    stage.recorder.answer = PLK_READ_CANCELLED;
    stage.show(0, 0);
    QVERIFY(stage.recorder.waitFor(1));
    letOthersRun();
    QCOMPARE(stage.reader.reads.load(), 1);
    stage.show(100, 100);
    QVERIFY(stage.recorder.waitFor(2));
    stage.engine->stop();
    const std::vector<SeenPass> seen = stage.recorder.seen();
    QCOMPARE(seen.size(), std::size_t(2));
    QCOMPARE(seen[1].generation, std::uint64_t(2));
}

void TestViewEngine::sameViewComesAgainFromWhatIsThere()
{
    Stage stage;
    stage.setCosts({100, 5});
    stage.show(10, 10);
    QVERIFY(stage.recorder.waitForGeneration(1));
    QCOMPARE(stage.reader.reads.load(), 2);
    stage.show(10, 10);
    QVERIFY(stage.recorder.waitForGeneration(2));
    QCOMPARE(stage.reader.reads.load(), 2);
    // Another stretch of the same cells needs no decoding either.
    stage.image.tables.setRange(0, -1.0, 1.0);
    stage.show(10, 10);
    QVERIFY(stage.recorder.waitForGeneration(3));
    QCOMPARE(stage.reader.reads.load(), 2);
    stage.engine->stop();
    const std::vector<SeenPass> seen = stage.recorder.seen();
    QCOMPARE(seen.size(), std::size_t(4));
    QCOMPARE(bytesOf(seen[2].firstPixel), grey(0));
    QCOMPARE(seen[2].blocks, std::uint64_t(40));
    QCOMPARE(bytesOf(seen[3].firstPixel), grey(128));
}

void TestViewEngine::refreshTimeSkipsPassesButTheFinalOne()
{
    Stage stage;
    stage.setCosts({5000, 100}); // so much that fast reads do not make it a quick view
    xrv::ViewRequest request = stage.image.view({0}, 64, 64, {0, 0, 64, 64});
    request.refreshTimeMs = 60000;
    stage.engine->setView(request);
    QVERIFY(stage.recorder.waitForGeneration(1));
    request.datasetRect = {64, 64, 128, 128};
    stage.engine->setView(request);
    QVERIFY(stage.recorder.waitForGeneration(2));
    stage.engine->stop();
    const std::vector<SeenPass> seen = stage.recorder.seen();
    QCOMPARE(seen.size(), std::size_t(3)); // coarse and final, then final only
    QCOMPARE(seen[2].generation, std::uint64_t(2));
    QCOMPARE(bytesOf(seen[2].firstPixel), grey(0));
}

void TestViewEngine::failureIsToldWithTheFinalPass()
{
    Stage stage;
    stage.setCosts({100, 5});
    stage.reader.onRead = [](const xrv::ReadRequest &) { return PLK::CError(PLK_ERR_DECODE, "Tile 7 is damaged."); };
    stage.show(0, 0);
    QVERIFY(stage.recorder.waitForGeneration(1));
    stage.engine->stop();
    const std::vector<SeenPass> seen = stage.recorder.seen();
    QCOMPARE(seen.size(), std::size_t(1));
    QCOMPARE(seen[0].status, PLK_READ_FAILED);
    QCOMPARE(seen[0].percent, 100); // nothing more will come
    QCOMPARE(stage.engine->lastError().GetErrorMessage(), "Tile 7 is damaged.");
}

void TestViewEngine::failureIsKeptWithABlockingView()
{
    FakeReader reader(256, 256);
    BlockingView image(reader);
    xrv::ViewEngine &engine = image.engine;
    reader.onRead = [](const xrv::ReadRequest &) { return PLK::CError(PLK_ERR_TRUNCATED, "The file ends too early."); };
    image.show({0}, 32, 32, {0, 0, 32, 32});
    for (int paint = 0; paint < 3; ++paint)
        QCOMPARE(readBgra(engine).status, PLK_READ_FAILED);
    QCOMPARE(reader.reads.load(), 1);
    QCOMPARE(engine.lastError().GetErrorNumber(), int(PLK_ERR_TRUNCATED));
    reader.onRead = nullptr;
    image.show({0}, 32, 32, {0, 0, 32, 32});
    QCOMPARE(readBgra(engine).status, PLK_READ_SUCCESS);
}

void TestViewEngine::blockingViewIsReadAgainWithoutDecoding()
{
    FakeReader reader(256, 256);
    reader.cell = [](int, int, std::int64_t, std::int64_t v) { return v; };
    BlockingView image(reader);
    xrv::ViewEngine &engine = image.engine;
    const xrv::ViewRequest request = image.view({0}, 32, 32, {0, 0, 32, 32});
    engine.setView(request);
    for (int round = 0; round < 3; ++round) {
        const auto lines = readBgra(engine);
        QCOMPARE(bytesOf(lines.at(0, 0)), grey(0));
        QCOMPARE(bytesOf(lines.at(31, 31)), grey(31));
    }
    // A read that ends half-way, then the same view.
    std::vector<std::uint32_t> line(32);
    QCOMPARE(readLine(engine, line.data()), PLK_READ_SUCCESS);
    engine.cancelReads();
    QCOMPARE(readLine(engine, line.data()), PLK_READ_CANCELLED);
    engine.setView(request);
    QCOMPARE(engine.percent(), 100);
    QCOMPARE(bytesOf(readBgra(engine).at(0, 0)), grey(0));
    QCOMPARE(reader.reads.load(), 1);
    image.show({0}, 32, 32, {1, 0, 33, 32});
    QCOMPARE(engine.percent(), 0);
    readBgra(engine);
    QCOMPARE(reader.reads.load(), 2);
}

void TestViewEngine::blockingProgressEndsWithTheLastLine()
{
    FakeReader reader(256, 256);
    BlockingView image(reader);
    xrv::ViewEngine &engine = image.engine;
    std::vector<std::uint32_t> line(64);
    QCOMPARE(readLine(engine, line.data()), PLK_READ_FAILED);
    QCOMPARE(engine.lastError().GetErrorNumber(), int(PLK_ERR_NO_VIEW));
    image.show({0}, 64, 200, {0, 0, 64, 200});
    int last = engine.percent();
    QCOMPARE(last, 0);
    for (int y = 0; y < 200; ++y) {
        QCOMPARE(readLine(engine, line.data()), PLK_READ_SUCCESS);
        QVERIFY(engine.percent() >= last);
        last = engine.percent();
        QCOMPARE(last == 100, y == 199);
    }
    QCOMPARE(engine.cacheTiles().available, engine.cacheTiles().inView);
    QCOMPARE(readLine(engine, line.data()), PLK_READ_SUCCESS); // the picture once more
    QCOMPARE(engine.percent(), 100);
}

void TestViewEngine::blockingReadIsCancelledFromElsewhere()
{
    FakeReader reader(256, 256);
    BlockingView image(reader);
    xrv::ViewEngine &engine = image.engine;
    Latch decoding;
    reader.onRead = [&](const xrv::ReadRequest &request) {
        decoding.open();
        waitUntil([&] { return request.cancel.isRaised(); });
        return PLK::CError(PLK_ERR_CANCELLED, "Reading was cancelled.");
    };
    image.show({0}, 64, 64, {0, 0, 64, 64});
    std::thread canceller([&] {
        decoding.wait();
        engine.cancelReads();
    });
    QCOMPARE(readBgra(engine).status, PLK_READ_CANCELLED);
    canceller.join();
    reader.onRead = nullptr;
    image.show({0}, 64, 64, {0, 0, 64, 64});
    QCOMPARE(readBgra(engine).status, PLK_READ_SUCCESS);
}

void TestViewEngine::blockingTimeIsWaitedForFirstLines()
{
    FakeReader reader(256, 256);
    BlockingView image(reader);
    xrv::ViewEngine &engine = image.engine;
    xrv::ViewRequest request = image.view({0}, 64, 64, {0, 0, 64, 64});
    request.blockingTimeMs = 20000;
    engine.setView(request);
    QCOMPARE(reader.reads.load(), 1);
    QCOMPARE(readBgra(engine).status, PLK_READ_SUCCESS);
    QCOMPARE(reader.reads.load(), 1);
    // What takes longer goes on; lines wait for it and do not decode once more.
    Latch goOn;
    reader.onRead = [&](const xrv::ReadRequest &) {
        goOn.wait();
        return PLK::CError();
    };
    request.datasetRect = {64, 64, 128, 128};
    request.blockingTimeMs = 10;
    QElapsedTimer timer;
    timer.start();
    engine.setView(request);
    QVERIFY(timer.elapsed() < 5000);
    goOn.open();
    QCOMPARE(readBgra(engine).status, PLK_READ_SUCCESS);
    QCOMPARE(reader.reads.load(), 2);
}

void TestViewEngine::hugeViewIsReadInStrips()
{
    FakeReader reader(80000, 80000, 3, 16);
    reader.raster.levels = 10;
    reader.cell = [](int component, int, std::int64_t u, std::int64_t v) { return (u + 7 * v + component) * 256; };
    BlockingView image(reader);
    xrv::ViewEngine &engine = image.engine;
    image.show({0, 1, 2}, 65535, 65535, {0, 0, 65535, 65535});
    std::vector<std::uint32_t> line(65535);
    for (int y = 0; y < 120; ++y) {
        QCOMPARE(readLine(engine, line.data()), PLK_READ_SUCCESS);
        const int blue = (65534 + 7 * y + 2) & 255;
        QCOMPARE(bytesOf(line[65534]), bgra(blue, (blue - 1) & 255, (blue - 2) & 255, 255));
    }
    QVERIFY(reader.reads > 1);
    QVERIFY2(reader.largestAnswer <= std::size_t(32) << 20, qPrintable(QString::number(reader.largestAnswer)));
    // From the bottom up the first strip is the last part of the image.
    image.show({0, 1, 2}, 65535, 65535, {0, 65535, 65535, 0});
    QCOMPARE(readLine(engine, line.data()), PLK_READ_SUCCESS);
    QCOMPARE(int(bytesOf(line[0])[2] & 255), (7 * 65534) & 255);
}

QTEST_APPLESS_MAIN(TestViewEngine)
#include "tst_viewengine.moc"
