#include "pages/xrvjp2klayerstatistics.h"
#include "pagetest.h"

#include <QComboBox>
#include <QElapsedTimer>
#include <QtTest>

using namespace PageTest;
using Korvane::XRVJP2kLayer;

class TestStatisticsPage : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void singleBand();
    void severalBands();
    void manyBands();
    void opacityIsNotListed();
    void deepBand();

private:
    std::unique_ptr<XRVJP2kLayer> open(const jp2maker::Options &options);
    /// What a band with 256 buckets shows, with these counts in some of them and none in the others.
    static QString buckets(const QMap<int, int> &counts);

    TestFolder folder;
    int fileNumber = 0;
};

std::unique_ptr<XRVJP2kLayer> TestStatisticsPage::open(const jp2maker::Options &options)
{
    return openLayer(folder.makeImage(QStringLiteral("%1.jp2").arg(++fileNumber), options));
}

QString TestStatisticsPage::buckets(const QMap<int, int> &counts)
{
    QStringList texts;
    for (int value = 0; value < 256; ++value)
        texts.append(QString::number(counts.value(value)));
    return texts.join(QLatin1Char(','));
}

/// 100 cells: 70 of 3 and 30 of 7. Mean 4.2; standard deviation 4 sqrt(0.7 x 0.3).
static jp2maker::Options seventyThirty()
{
    jp2maker::Options options;
    options.width = options.height = 10;
    options.cell = [](int, int, int y) { return y < 7 ? 3 : 7; };
    return options;
}

void TestStatisticsPage::singleBand()
{
    const auto layer = open(seventyThirty());
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "bandComboBox"), QStringList({QStringLiteral("Greyscale")}));
    const QString counts = buckets({{3, 70}, {7, 30}});
    // The text edit makes a new paragraph of the carriage return behind them.
    QCOMPARE(filledFields(page),
             (QStringList{QStringLiteral("histogramText=") + counts + QLatin1Char('\n'), QStringLiteral("max=7.0000"),
                          QStringLiteral("mean=4.2000"), QStringLiteral("median=3.0000"), QStringLiteral("min=3.0000"),
                          QStringLiteral("mode=3.0000"), QStringLiteral("stddev=1.8330")}));
    QCOMPARE(
        copiedText(page),
        withReturns({QStringLiteral("Band #0"), QStringLiteral("mode = 3.0000"), QStringLiteral("median = 3.0000"),
                     QStringLiteral("mean = 4.2000"), QStringLiteral("stddev = 1.8330"), QStringLiteral("min = 3.0000"),
                     QStringLiteral("max = 7.0000"), QStringLiteral("Histogram Band #0 = ") + counts}));
}

/// Bands that are constant: 10, 20 and 30.
static jp2maker::Options threeConstants(int bands = 3)
{
    jp2maker::Options options;
    options.width = options.height = 10;
    options.components.assign(static_cast<size_t>(bands), jp2maker::Component());
    options.opacityLast = bands == 4;
    options.cell = [](int component, int, int) { return 10 * (component + 1); };
    return options;
}

void TestStatisticsPage::severalBands()
{
    const auto layer = open(threeConstants());
    XRVJP2kLayerStatistics page;
    page.onBandChange(0); // nothing is known yet
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "bandComboBox"),
             QStringList({QStringLiteral("Red"), QStringLiteral("Green"), QStringLiteral("Blue")}));
    QCOMPARE(textOf(page, "bandComboBox"), QStringLiteral("Red"));
    QCOMPARE(textOf(page, "mean"), QStringLiteral("10.0000"));
    page.findChild<QComboBox *>(QStringLiteral("bandComboBox"))->setCurrentIndex(2);
    QCOMPARE(textOf(page, "mean"), QStringLiteral("30.0000"));
    QCOMPARE(textOf(page, "histogramText"), buckets({{30, 100}}) + QLatin1Char('\n'));
    for (const int band : {-1, 3, 1000000})
        page.onBandChange(band);
    QCOMPARE(textOf(page, "mean"), QStringLiteral("30.0000"));
    const QStringList lines = copiedText(page).split(QLatin1Char('\r'));
    QCOMPARE(lines.size(), 3 * 10 + 1);
    QVERIFY(lines.constLast().isEmpty());
    for (int band = 0; band < 3; ++band) {
        QCOMPARE(lines[10 * band], QStringLiteral("Band #%1").arg(band));
        QCOMPARE(lines[10 * band + 3], QStringLiteral("mean = %1.0000").arg(10 * (band + 1)));
        // Its own histogram under every band's number.
        for (int line = 0; line < 3; ++line)
            QCOMPARE(lines[10 * band + 7 + line],
                     QStringLiteral("Histogram Band #%1 = ").arg(line) + buckets({{10 * (band + 1), 100}}));
    }
}

/// Every histogram is there as often as there are bands: a text of 94 million characters.
void TestStatisticsPage::manyBands()
{
    constexpr int kBands = 420;
    jp2maker::Options options;
    options.width = options.height = 4;
    options.levels = 0;
    options.components.resize(kBands);
    const auto layer = open(options);
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    const QString text = copiedText(page);
    QCOMPARE(text.count(QLatin1Char('\r')), (7 + kBands) * kBands);
    QVERIFY(text.contains(QStringLiteral("\rBand #%1\r").arg(kBands - 1)));
}

void TestStatisticsPage::opacityIsNotListed()
{
    const auto layer = open(threeConstants(4));
    XRVJP2kLayerStatistics page;
    page.setLayer(layer.get());
    QCOMPARE(itemsOf(page, "bandComboBox"),
             QStringList({QStringLiteral("Red"), QStringLiteral("Green"), QStringLiteral("Blue")}));
    QVERIFY(copiedText(page).contains(QLatin1String("\rBand #3\r")));
}

void TestStatisticsPage::deepBand()
{
    jp2maker::Options options;
    options.width = options.height = 256;
    options.components = {{16, false, 1, 1}};
    options.cell = [](int, int x, int y) { return 256 * y + x; };
    const auto layer = open(options);
    XRVJP2kLayerStatistics page;
    page.show();
    QElapsedTimer timer;
    timer.start();
    page.setLayer(layer.get());
    page.grab(); // lays out 65536 numbers in one line
    QVERIFY2(timer.elapsed() < 5000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(textOf(page, "max"), QStringLiteral("65535.0000"));
    QCOMPARE(textOf(page, "mean"), QStringLiteral("32767.5000"));
    QCOMPARE(textOf(page, "histogramText"), QString(QStringLiteral("1,")).repeated(65535) + QStringLiteral("1\n"));
}

QTEST_MAIN(TestStatisticsPage)
#include "tst_statisticspage.moc"
