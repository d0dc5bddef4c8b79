#include "data/syntheticimage.h"

#include "decode/cache/tilecache.h"
#include "statistics/statisticsrecord.h"

#include <xrv60/plkinit.h>
#include <xrv60/plkview.h>

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <numeric>
#include <thread>

using namespace xrv;

namespace {

std::uint64_t cellsOf(const PLKBandStatistics &band)
{
    return std::accumulate(band.pHistogram, band.pHistogram + band.nHistBucketCount, std::uint64_t(0));
}

bool areEqual(const PLKBandStatistics &a, const PLKBandStatistics &b)
{
    return a.fMode == b.fMode && a.fMin == b.fMin && a.fMax == b.fMax && a.fMean == b.fMean && a.fMedian == b.fMedian &&
           a.fStandardDev == b.fStandardDev &&
           std::equal(a.pHistogram, a.pHistogram + a.nHistBucketCount, b.pHistogram, b.pHistogram + b.nHistBucketCount);
}

/// An image that is open as a view.
struct OpenImage
{
    explicit OpenImage(const std::string &path)
    {
        if (PLK::CError error = view.Open(path.c_str(), false, false))
            qFatal("%s", error.GetErrorMessage());
    }
    ~OpenImage() { view.Close(true); }
    StatisticsPtr statistics()
    {
        PLKFileStatistics *found = nullptr;
        if (PLK::CError error = view.GetClientStatistics(&found))
            qFatal("%s", error.GetErrorMessage());
        return StatisticsPtr(found);
    }
    PLK::CView view;
};

} // namespace

class TestCountedStatistics : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void oneAnswerForTheSameCells_data();
    void oneAnswerForTheSameCells();
    void countLeavesTheTileCacheAlone();
    void countIsGivenUpAndBegunAgain();
    void closedWhileItCounts();

private:
    std::string write(int width, int height, int bands, FileKind kind, int tileSize)
    {
        SyntheticImage image(width, height, bands, 16, false);
        WriteOptions options;
        options.kind = kind;
        options.tileSize = std::uint32_t(tileSize);
        const QString name = QStringLiteral("%1-%2-%3").arg(width).arg(bands).arg(tileSize);
        const std::string path =
            QDir(folder.path()).filePath(name + QLatin1String(kind == FileKind::Xrv ? ".xrv" : ".jp2")).toStdString();
        if (PLK::CError error = writeImage(image, options, path))
            qFatal("%s", error.GetErrorMessage());
        return path;
    }
    QTemporaryDir folder;
    std::string large; ///< JPEG 2000, of more cells than are counted while somebody waits
};

void TestCountedStatistics::initTestCase()
{
    large = write(2111, 1900, 1, FileKind::GeoJp2, 512);
}

void TestCountedStatistics::oneAnswerForTheSameCells_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("tileSize");
    QTest::addColumn<bool>("isEstimatedFirst");
    QTest::newRow("small") << 650 << 350 << 3 << 256 << false;
    QTest::newRow("tiles") << 2111 << 1900 << 1 << 512 << true;
}

void TestCountedStatistics::oneAnswerForTheSameCells()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, bands);
    QFETCH(int, tileSize);
    OpenImage stored(write(width, height, bands, FileKind::Xrv, tileSize));
    OpenImage counted(write(width, height, bands, FileKind::GeoJp2, tileSize));
    QCOMPARE(counted.view.GetStatisticsState(), PLK_STATISTICS_UNKNOWN);
    const StatisticsPtr expected = stored.statistics(), first = counted.statistics();
    QCOMPARE(stored.view.GetStatisticsState(), PLK_STATISTICS_EXACT);
    QTEST(counted.view.GetStatisticsState() == PLK_STATISTICS_ESTIMATED, "isEstimatedFirst");
    counted.view.StartCountingStatistics();
    QVERIFY(counted.view.WaitForStatistics().IsSuccess());
    QCOMPARE(counted.view.GetStatisticsState(), PLK_STATISTICS_EXACT);
    const StatisticsPtr last = counted.statistics();
    for (int band = 0; band < bands; ++band) {
        const PLKBandStatistics &exact = expected->pBandStats[band], &estimate = first->pBandStats[band];
        QCOMPARE(cellsOf(exact), std::uint64_t(width) * std::uint64_t(height));
        QVERIFY(areEqual(last->pBandStats[band], exact));
        // An estimate is of cells that are there: each value no more often than in the image.
        QVERIFY(cellsOf(estimate) > 100000);
        const auto shift = std::size_t(estimate.fMin - exact.fMin);
        for (std::size_t value = 0; value < estimate.nHistBucketCount; ++value)
            QVERIFY(estimate.pHistogram[value] <= exact.pHistogram[value + shift]);
    }
}

void TestCountedStatistics::countLeavesTheTileCacheAlone()
{
    OpenImage image(large);
    const StatisticsPtr estimate = image.statistics();
    const std::uint64_t before = TileCache::instance().bytesUsed();
    QVERIFY(before > 0);
    image.view.StartCountingStatistics();
    QVERIFY(image.view.WaitForStatistics().IsSuccess());
    QCOMPARE(TileCache::instance().bytesUsed(), before);
}

void TestCountedStatistics::countIsGivenUpAndBegunAgain()
{
    OpenImage image(large);
    QCOMPARE(image.view.WaitForStatistics().GetErrorNumber(), int(PLK_ERR_CANCELLED)); // nobody has begun one
    QVERIFY(image.statistics());
    image.view.StartCountingStatistics();
    QCOMPARE(image.view.GetStatisticsState(), PLK_STATISTICS_COUNTING);
    image.view.CancelCountingStatistics();
    QCOMPARE(image.view.WaitForStatistics().GetErrorNumber(), int(PLK_ERR_CANCELLED));
    QCOMPARE(image.view.GetStatisticsState(), PLK_STATISTICS_ESTIMATED);
    std::vector<std::thread> threads;
    for (int i = 0; i < 3; ++i)
        threads.emplace_back([&image] {
            image.view.StartCountingStatistics();
            image.statistics();
            image.view.WaitForStatistics();
        });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(image.view.GetStatisticsState(), PLK_STATISTICS_EXACT);
    QCOMPARE(image.view.GetStatisticsPercent(), 100);
}

void TestCountedStatistics::closedWhileItCounts()
{
    for (int round = 0; round < 5; ++round) {
        OpenImage image(large);
        image.view.StartCountingStatistics();
        // At another moment each time.
        QTRY_VERIFY_WITH_TIMEOUT(image.view.GetStatisticsPercent() >= round, 60000);
    }
}

QTEST_GUILESS_MAIN(TestCountedStatistics)
#include "tst_countedstatistics.moc"
