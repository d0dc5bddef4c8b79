#include "statisticsbar.h"

#include <QDGui/ilayerstatistics.h>
#include <QDGui/layer.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace Viewer {

using Korvane::Map::ILayerStatistics;
using State = ILayerStatistics::StatisticsState;

namespace {

constexpr int kPollMs = 150;

} // namespace

StatisticsBar::StatisticsBar(QWidget *parent)
    : QWidget(parent)
    , text(new QLabel)
    , button(new QPushButton)
{
    text->setObjectName(QStringLiteral("statisticsText"));
    text->setWordWrap(true);
    button->setObjectName(QStringLiteral("statisticsButton"));
    button->setAutoDefault(false);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(text, 1);
    layout->addWidget(button);
    timer.setInterval(kPollMs);
    connect(&timer, &QTimer::timeout, this, &StatisticsBar::follow);
    connect(button, &QPushButton::clicked, this, &StatisticsBar::startOrCancel);
    hide();
}

void StatisticsBar::setLayer(Korvane::Map::Layer *layer)
{
    statistics = dynamic_cast<ILayerStatistics *>(layer);
    wasEstimated = false;
    countsUnasked = true;
    timer.stop();
    hide();
}

void StatisticsBar::pageWasLoaded()
{
    if (!statistics)
        return;
    if (countsUnasked && statistics->areCellsLocal() && statistics->getStatisticsState() == State::Estimated) {
        countsUnasked = false;
        statistics->countStatistics();
    }
    follow();
}

void StatisticsBar::follow()
{
    const State state = statistics->getStatisticsState();
    const bool isCounting = state == State::Counting, isEstimated = isCounting || state == State::Estimated;
    if (isCounting)
        text->setText(tr("The statistics are an estimate. All cells are being counted: %1 %")
                          .arg(statistics->getStatisticsPercent()));
    else
        text->setText(tr("The statistics are an estimate from a part of the cells."));
    button->setText(isCounting ? tr("Cancel") : tr("Count All Cells"));
    setVisible(isEstimated);
    isCounting ? timer.start() : timer.stop();
    const bool hasBecomeExact = wasEstimated && state == State::Exact;
    wasEstimated = isEstimated;
    if (hasBecomeExact)
        Q_EMIT counted();
}

void StatisticsBar::startOrCancel()
{
    if (!statistics)
        return;
    if (statistics->getStatisticsState() == State::Counting)
        statistics->cancelStatistics();
    else
        statistics->countStatistics();
    follow();
}

} // namespace Viewer
