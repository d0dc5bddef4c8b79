#include "layers/layerdescriber.h"
#include "plugins/statisticsbar.h"
#include "quadlayer.h"

#include <QDGui/ilayerstatistics.h>
#include <QDGui/irasterlayerhistogram.h>

#include <QLabel>
#include <QPushButton>
#include <QtTest>

using namespace Viewer;
using Korvane::Map::HistogramT;
using Korvane::Map::ILayerStatistics;

namespace {

/// Does as it is told, and counts for ever unless told otherwise.
class CountedLayer : public QuadLayer, public Korvane::Map::IRasterLayerHistogram, public Korvane::Map::ILayerStatistics
{
public:
    StatisticsState getStatisticsState() const override { return state; }
    int getStatisticsPercent() const override { return 30; }
    void countStatistics() override { state = stateAfterStart; }
    void cancelStatistics() override { state = StatisticsState::Estimated; }
    bool areCellsLocal() const override { return isLocal; }
    QVector<HistogramT<quint64>> getHistograms(bool, bool, QSize, double, double, double, double) override
    {
        return {HistogramT<quint64>()};
    }

    StatisticsState state = StatisticsState::Estimated;
    StatisticsState stateAfterStart = StatisticsState::Counting;
    bool isLocal = true;
};

using State = ILayerStatistics::StatisticsState;

} // namespace

class TestStatisticsBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void localImagesAreCountedUnasked();
    void streamsAreCountedWhenAsked();
    void descriptionTellsWhatIsEstimated();
};

void TestStatisticsBar::localImagesAreCountedUnasked()
{
    CountedLayer layer;
    StatisticsBar bar;
    QSignalSpy counted(&bar, &StatisticsBar::counted);
    bar.setLayer(&layer);
    bar.pageWasLoaded();
    QCOMPARE(layer.state, State::Counting);
    QVERIFY(!bar.isHidden());
    QVERIFY(bar.findChild<QLabel *>()->text().contains(QStringLiteral("30 %")));
    layer.state = State::Exact;
    QTRY_COMPARE(counted.size(), 1);
    QVERIFY(bar.isHidden());
    bar.pageWasLoaded(); // another page
    QCOMPARE(counted.size(), 1);
    QVERIFY(bar.isHidden());
}

void TestStatisticsBar::streamsAreCountedWhenAsked()
{
    CountedLayer layer;
    layer.isLocal = false;
    StatisticsBar bar;
    bar.setLayer(&layer);
    bar.pageWasLoaded();
    QCOMPARE(layer.state, State::Estimated);
    QVERIFY(!bar.isHidden());
    auto *button = bar.findChild<QPushButton *>();
    button->click();
    QCOMPARE(layer.state, State::Counting);
    button->click();
    QCOMPARE(layer.state, State::Estimated);
    QVERIFY(!bar.isHidden());
    bar.setLayer(nullptr);
    QVERIFY(bar.isHidden());
}

void TestStatisticsBar::descriptionTellsWhatIsEstimated()
{
    CountedLayer layer;
    layer.stateAfterStart = State::Exact;
    const auto band = [&layer] {
        return LayerDescriber::describe(layer)[QStringLiteral("histograms")].toArray().first().toObject();
    };
    layer.isLocal = false;
    QCOMPARE(band().value(QStringLiteral("estimated")), QJsonValue(true));
    layer.isLocal = true;
    QVERIFY(!band().contains(QStringLiteral("estimated")));
}

QTEST_MAIN(TestStatisticsBar)
#include "tst_statisticsbar.moc"
