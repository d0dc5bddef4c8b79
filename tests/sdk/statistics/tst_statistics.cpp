#include "figures.h"

#include "sdk/view/fakereader.h"

#include "statistics/statistics.h"

#include <xrv60/plkinit.h>

#include <QtTest>

#include <numeric>

using xrv::BandMap;
using xrv::ComponentInfo;
using xrv::IntRect;
using xrv::Jp2Structure;
using xrv::RasterInfo;
using xrv::StatisticsKind;
using xrv::StatisticsPtr;

Q_DECLARE_METATYPE(xrv::StatisticsKind)

namespace {

/// Keeps what was asked of it. A cell of a level is the full-resolution cell at its place.
class LevelReader : public FakeReader
{
public:
    /// Cell at column x and row y of a component's own grid, canvas coordinates.
    using CellFunction = std::function<std::int64_t(int component, std::int64_t x, std::int64_t y)>;

    LevelReader(RasterInfo info, const CellFunction &fullCell)
        : FakeReader(1, 1)
    {
        raster = std::move(info);
        cell = [fullCell](int component, int level, std::int64_t u, std::int64_t v) {
            return fullCell(component, u << level, v << level);
        };
        costOf = [](const xrv::ReadRequest &) { return xrv::ReadCost(); };
        onRead = [this](const xrv::ReadRequest &request) {
            requests.push_back(request);
            return PLK::CError();
        };
    }

    /// All cells of a component at a level, row by row.
    std::vector<std::int64_t> cellsOf(int component, int level) const
    {
        std::vector<std::int64_t> cells;
        const IntRect rect = raster.levelRect(component, level);
        for (std::int64_t y = rect.y0; y < rect.y1; ++y)
            for (std::int64_t x = rect.x0; x < rect.x1; ++x)
                cells.push_back(cell(component, level, x, y));
        return cells;
    }

    std::vector<xrv::ReadRequest> requests;
};

ComponentInfo component(int bits, bool isSigned, std::uint32_t step = 1)
{
    return {static_cast<std::uint8_t>(bits), isSigned, step, step, xrv::sampleTypeFor(bits, isSigned)};
}

RasterInfo raster(std::uint32_t width, std::uint32_t height, int levels, std::vector<ComponentInfo> components,
                  std::uint32_t offset = 0)
{
    RasterInfo info;
    info.width = width;
    info.height = height;
    info.canvasX0 = info.canvasY0 = offset;
    info.canvasX1 = offset + width;
    info.canvasY1 = offset + height;
    info.components = std::move(components);
    info.levels = info.codedLevels = levels;
    return info;
}

/// Spread over all values of the band, with some more often than others.
std::int64_t noise(int bits, bool isSigned, std::int64_t x, std::int64_t y)
{
    const auto mixed = static_cast<std::uint64_t>(x * 73856093) ^ static_cast<std::uint64_t>(y * 19349663);
    const std::uint64_t wide = (mixed * 0x9E3779B97F4A7C15u) >> 20;
    const std::uint64_t limit = std::uint64_t(1) << bits;
    const auto value = static_cast<std::int64_t>((wide % 7 == 0 ? 5 : wide) % limit);
    return isSigned ? value - static_cast<std::int64_t>(limit / 2) : value;
}

std::uint64_t sumOf(const PLKBandStatistics &band)
{
    return std::accumulate(band.pHistogram, band.pHistogram + band.nHistBucketCount, std::uint64_t(0));
}

StatisticsPtr statisticsOf(LevelReader &reader, const Jp2Structure &structure = {},
                           StatisticsKind kind = StatisticsKind::Exact)
{
    std::vector<std::string> warnings;
    const BandMap map = BandMap::make(reader.info(), structure, &warnings);
    StatisticsPtr statistics;
    if (PLK::CError error = xrv::computeStatistics(reader, map, kind, {}, &statistics))
        qFatal("%s", error.GetErrorMessage());
    return statistics;
}

bool isClose(double value, double expected, double tolerance)
{
    const bool close = std::abs(value - expected) <= tolerance + std::abs(expected) * 1e-6;
    if (!close)
        qWarning("%.9g instead of %.9g", value, expected);
    return close;
}

} // namespace

class TestStatistics : public QObject
{
    Q_OBJECT

private slots:
    void figuresAgree_data();
    void figuresAgree();
    void histogramHasOneBucketPerValue();
    void hiddenCellsAreLeftOut();
    void everyCellOnceInPieces();
    void subsampledComponentsOnTheirOwnGrid();
    void colourConversionOfSubsampledComponents();
    void plans_data();
    void plans();
    void manyBandsStayBounded();
    void errorsOfTheReader();
    void clip_data();
    void clip();
};

void TestStatistics::figuresAgree_data()
{
    QTest::addColumn<int>("bits");
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<int>("constant");     // -1: noise
    QTest::addColumn<double>("tolerance"); // of the mode: half a step where there are fewer steps than values
    QTest::newRow("1 bit") << 1 << false << -1 << 0.0;
    QTest::newRow("8 bits") << 8 << false << -1 << 0.0;
    QTest::newRow("5 bits, signed") << 5 << true << -1 << 0.0;
    QTest::newRow("8 bits, signed") << 8 << true << -1 << 0.0;
    QTest::newRow("12 bits") << 12 << false << -1 << 0.0;
    QTest::newRow("16 bits, signed") << 16 << true << -1 << 0.0;
    QTest::newRow("20 bits") << 20 << false << -1 << 8.5;
    QTest::newRow("31 bits, signed") << 31 << true << -1 << 16385.0;
    QTest::newRow("8 bits, all equal") << 8 << false << 77 << 0.0;
    QTest::newRow("24 bits, all equal") << 24 << false << 70000 << 0.0;
    QTest::newRow("12 bits, all zero") << 12 << false << 0 << 0.0;
}

void TestStatistics::figuresAgree()
{
    QFETCH(int, bits);
    QFETCH(bool, isSigned);
    QFETCH(int, constant);
    QFETCH(double, tolerance);
    LevelReader reader(raster(203, 101, 2, {component(bits, isSigned)}, 3), [&](int, std::int64_t x, std::int64_t y) {
        return constant >= 0 ? constant : noise(bits, isSigned, x, y);
    });
    const StatisticsPtr statistics = statisticsOf(reader);
    QCOMPARE(statistics->nBands, 1u);
    const PLKBandStatistics &band = statistics->pBandStats[0];
    const Figures expected(reader.cellsOf(0, 0));
    QVERIFY(isClose(double(band.fMin), expected.min, 0));
    QVERIFY(isClose(double(band.fMax), expected.max, 0));
    QVERIFY(isClose(double(band.fMean), expected.mean, 1e-6));
    QVERIFY(isClose(double(band.fStandardDev), expected.deviation, 1e-4));
    QVERIFY(isClose(double(band.fMedian), expected.median, 0));
    QVERIFY(isClose(double(band.fMode), expected.mode, tolerance));
    QCOMPARE(sumOf(band), std::uint64_t(203 * 101));
}

void TestStatistics::histogramHasOneBucketPerValue()
{
    const auto cell = [](int c, std::int64_t x, std::int64_t) {
        return c == 0 ? 10 + x : c == 1 ? x - 5 : 1000 + 3 * x;
    };
    LevelReader reader(raster(20, 1, 1, {component(8, false), component(8, true), component(16, false)}), cell);
    const StatisticsPtr statistics = statisticsOf(reader);
    const PLKBandStatistics *bands = statistics->pBandStats;
    QCOMPARE(bands[0].nHistBucketCount, 256u);
    QCOMPARE(bands[0].pHistogram[9], std::uint64_t(0));
    QCOMPARE(bands[0].pHistogram[10], std::uint64_t(1));
    QCOMPARE(bands[1].nHistBucketCount, 256u);
    QCOMPARE(bands[1].pHistogram[128 - 5], std::uint64_t(1)); // the first bucket is -128
    QCOMPARE(bands[1].pHistogram[128 - 6], std::uint64_t(0));
    QCOMPARE(bands[2].nHistBucketCount, 58u); // 1000 to 1057
    QCOMPARE(bands[2].pHistogram[3], std::uint64_t(1));
    QCOMPARE(bands[2].pHistogram[4], std::uint64_t(0));
    QCOMPARE(bands[2].fMedian, 1028.5f); // between the tenth of the twenty cells and the eleventh
}

/// Cells under opacity 0 do not count, nor, at lower levels, those that are mixed with them; Floats that are no finite
/// numbers never do. An image that is nowhere opaque still has a contrast.
void TestStatistics::hiddenCellsAreLeftOut()
{
    ComponentInfo deep = component(32, true);
    deep.sampleType = xrv::SampleType::Float;
    bool isThin = false;
    LevelReader reader(
        raster(800, 600, 3, {deep, component(16, false), component(8, false)}),
        [&isThin](int c, std::int64_t x, std::int64_t y) {
            return c == 2 ? (isThin ? 100 : x < 200 ? 0 : x < 400 ? 90 : 255) : c == 1 ? x : 1000 * x + y;
        });
    Jp2Structure structure;
    structure.definitions = {{0, 65535, 65535}, {1, 65535, 65535}, {2, 1, 0}};
    const auto means = [&](StatisticsKind kind) {
        StatisticsPtr statistics;
        const BandMap map = BandMap::make(reader.info(), structure, nullptr);
        if (xrv::computeStatistics(reader, map, kind, {}, &statistics))
            return std::vector<float>();
        const PLKBandStatistics *bands = statistics->pBandStats;
        return std::vector<float>{bands[0].fMin, bands[0].fMax, bands[1].fMean, float(sumOf(bands[2]))};
    };
    QCOMPARE(means(StatisticsKind::Exact), std::vector<float>({200000.0f, 799599.0f, 499.5f, 480000.0f}));
    QCOMPARE(means(StatisticsKind::Display), std::vector<float>({400000.0f, 798598.0f, 599.0f, 120000.0f}));
    isThin = true;
    QCOMPARE(means(StatisticsKind::Display), std::vector<float>({0.0f, 798598.0f, 399.0f, 120000.0f}));
}

void TestStatistics::everyCellOnceInPieces()
{
    // So many bands that the image takes several pieces, with odd offsets.
    const std::vector<ComponentInfo> components(60, component(8, false));
    LevelReader reader(raster(3001, 101, 1, components, 5),
                       [](int c, std::int64_t, std::int64_t y) { return (c + y) % 256; });
    const StatisticsPtr statistics = statisticsOf(reader);
    QVERIFY(reader.requests.size() > 1);
    for (int c : {0, 59}) {
        std::vector<std::uint64_t> expected(256);
        for (std::int64_t value : reader.cellsOf(c, 0))
            ++expected[static_cast<std::size_t>(value)];
        QVERIFY(std::equal(expected.begin(), expected.end(), statistics->pBandStats[c].pHistogram));
    }
}

void TestStatistics::subsampledComponentsOnTheirOwnGrid()
{
    LevelReader reader(raster(1051, 501, 2, {component(8, false), component(8, false, 2), component(8, false, 3)}, 7),
                       [](int c, std::int64_t x, std::int64_t y) { return (x * 3 + y * 5 + c) % 200; });
    for (const auto kind : {StatisticsKind::Exact, StatisticsKind::Display}) {
        const StatisticsPtr statistics = statisticsOf(reader, {}, kind);
        const int level = kind == StatisticsKind::Exact ? 0 : 1;
        QCOMPARE(reader.requests.back().level, level);
        for (int c = 0; c < 3; ++c) {
            const std::vector<std::int64_t> cells = reader.cellsOf(c, level);
            QCOMPARE(sumOf(statistics->pBandStats[c]), std::uint64_t(cells.size()));
            QVERIFY(isClose(double(statistics->pBandStats[c].fMean), Figures(cells).mean, 1e-4));
        }
    }
}

void TestStatistics::colourConversionOfSubsampledComponents()
{
    Jp2Structure structure;
    structure.colour = xrv::ColourSpecification{};
    structure.colour->kind = xrv::ColourSpecification::Kind::SYcc;
    LevelReader reader(raster(101, 51, 1, {component(8, false), component(8, false, 2), component(8, false, 2)}, 1),
                       [](int c, std::int64_t x, std::int64_t) { return c == 0 ? x % 256 : 128; });
    const StatisticsPtr statistics = statisticsOf(reader, structure);
    QCOMPARE(statistics->nBands, 3u);
    for (int band = 0; band < 3; ++band) { // without chroma every colour is the luma
        QCOMPARE(sumOf(statistics->pBandStats[band]), std::uint64_t(101 * 51));
        QCOMPARE(double(statistics->pBandStats[band].fMin), 1.0);
        QCOMPARE(double(statistics->pBandStats[band].fMax), 101.0);
        QCOMPARE(double(statistics->pBandStats[band].fMean), 51.0);
    }
}

void TestStatistics::plans_data()
{
    QTest::addColumn<StatisticsKind>("kind");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("levels");
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("level");
    QTest::addColumn<double>("mostCells");
    const auto exact = StatisticsKind::Exact, estimate = StatisticsKind::Estimate, display = StatisticsKind::Display;
    QTest::newRow("shown, small image") << display << 300 << 200 << 6 << 3 << 0 << 6e4;
    QTest::newRow("shown, scene") << display << 10980 << 10980 << 6 << 3 << 5 << 1.2e5;
    QTest::newRow("shown, too few levels") << display << 40000 << 40000 << 1 << 3 << 0 << 4e5;
    QTest::newRow("shown, one column") << display << 1 << 2000000000 << 1 << 1 << 0 << 5e6;
    QTest::newRow("shown, largest image") << display << 2147483647 << 2147483647 << 33 << 1 << 23 << 3e5;
    QTest::newRow("shown, very many bands") << display << 4096 << 4096 << 6 << 16384 << 5 << 4e3;
    QTest::newRow("estimated, small image") << estimate << 800 << 600 << 6 << 3 << 0 << 0.48e6;
    QTest::newRow("estimated, scene") << estimate << 10980 << 10980 << 6 << 3 << 0 << 1.1e6;
    QTest::newRow("estimated, largest image") << estimate << 2147483647 << 2147483647 << 33 << 1 << 0 << 1.1e6;
    QTest::newRow("estimated, very many bands") << estimate << 4096 << 4096 << 1 << 16384 << 0 << 4.1e3;
    QTest::newRow("counted, scene") << exact << 10980 << 10980 << 6 << 3 << 0 << 10980.0 * 10980.0;
    QTest::newRow("counted, one row") << exact << 100000000 << 1 << 6 << 2 << 0 << 1e8;
}

void TestStatistics::plans()
{
    QFETCH(StatisticsKind, kind);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, levels);
    QFETCH(int, bands);
    QFETCH(int, level);
    QFETCH(double, mostCells);
    const RasterInfo info = raster(std::uint32_t(width), std::uint32_t(height), levels, {component(8, false)});
    const xrv::StatisticsPlan plan = xrv::planStatistics(info, bands, kind);
    QCOMPARE(plan.level, level);
    double cells = 0;
    IntRect last;
    for (const IntRect &window : plan.windows) {
        QVERIFY(!window.isEmpty());
        QVERIFY((IntRect{0, 0, width, height}.contains(window)));
        QVERIFY(window.intersected(last).isEmpty());
        cells += std::ceil(std::ldexp(double(window.width()), -level)) *
                 std::ceil(std::ldexp(double(window.height()), -level));
        last = window;
    }
    QVERIFY2(cells <= mostCells, qPrintable(QString::number(cells)));
    const double least =
        kind == StatisticsKind::Exact ? mostCells : std::min(mostCells / 5, double(width) * height / 10);
    QVERIFY2(cells >= least || width == 1, qPrintable(QString::number(cells)));
}

void TestStatistics::manyBandsStayBounded()
{
    // 16-bit bands: counters for all of them at once would take 300 MB.
    const std::vector<ComponentInfo> components(600, component(16, false));
    LevelReader reader(raster(50, 50, 1, components),
                       [](int c, std::int64_t x, std::int64_t y) { return (c * 7 + x * 97 + y) % 65536; });
    const StatisticsPtr statistics = statisticsOf(reader);
    QCOMPARE(statistics->nBands, 600u);
    QVERIFY(reader.largestAnswer <= 40u << 20);
    std::uint64_t buckets = 0;
    for (std::uint32_t b = 0; b < statistics->nBands; ++b)
        buckets += statistics->pBandStats[b].nHistBucketCount;
    QVERIFY(buckets <= 4u << 20);
    QCOMPARE(double(statistics->pBandStats[599].fMin), double(599 * 7));
    QVERIFY(sumOf(statistics->pBandStats[300]) > 0);
}

void TestStatistics::errorsOfTheReader()
{
    class Failing : public LevelReader
    {
        using LevelReader::LevelReader;
        PLK::CError read(const xrv::ReadRequest &, xrv::ReadResult *) override { return {PLK_ERR_DECODE, "No."}; }
    };
    Failing reader(raster(10, 10, 1, {component(8, false)}), [](int, std::int64_t, std::int64_t) { return 0; });
    std::vector<std::string> warnings;
    StatisticsPtr statistics;
    const PLK::CError error = xrv::computeStatistics(reader, BandMap::make(reader.info(), {}, &warnings),
                                                     StatisticsKind::Exact, {}, &statistics);
    QCOMPARE(error.GetErrorNumber(), int(PLK_ERR_DECODE));
    QVERIFY(!statistics);
}

void TestStatistics::clip_data()
{
    // Cells 0 to 199, each once, and what is left of them.
    QTest::addColumn<int>("bits");
    QTest::addColumn<double>("percent");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("tolerance");
    for (int bits : {8, 12, 20}) {
        QTest::addRow("%d bits, all", bits) << bits << 100.0 << 0.0 << 199.0 << 0.0;
        QTest::addRow("%d bits, more than all", bits) << bits << 250.0 << 0.0 << 199.0 << 0.0;
        QTest::addRow("%d bits, one cell at either end", bits) << bits << 99.0 << 1.0 << 198.0 << 0.0;
        QTest::addRow("%d bits, ten cells at either end", bits) << bits << 90.0 << 10.0 << 189.0 << 0.0;
        QTest::addRow("%d bits, less than a cell", bits) << bits << 99.5 << 0.0 << 199.0 << 0.0;
        QTest::addRow("%d bits, nothing", bits) << bits << 0.0 << 100.0 << 100.0 << 1.0;
        QTest::addRow("%d bits, less than nothing", bits) << bits << -5.0 << 100.0 << 100.0 << 1.0;
    }
}

void TestStatistics::clip()
{
    QFETCH(int, bits);
    QFETCH(double, percent);
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, tolerance);
    // The same for signed bands, whose buckets begin elsewhere, and for values that are far from zero.
    for (int shift : {0, bits > 8 ? 1500 : 50, -100}) {
        LevelReader reader(raster(200, 1, 1, {component(bits, shift < 0)}),
                           [shift](int, std::int64_t x, std::int64_t) { return x + shift; });
        const StatisticsPtr statistics = statisticsOf(reader);
        const std::pair<double, double> range = xrv::clipRange(statistics->pBandStats[0], percent);
        QVERIFY(isClose(range.first, low + shift, tolerance));
        QVERIFY(isClose(range.second, high + shift, tolerance));
        QVERIFY(range.first <= range.second);
    }
}

QTEST_APPLESS_MAIN(TestStatistics)
#include "tst_statistics.moc"
