#include "xrvjp2klayerstatistics.h"

#include "clipboardtext.h"
#include "fieldtext.h"
#include "layer/xrvjp2klayer.h"
#include "ui_xrvjp2klayerstatistics.h"

#include <QSignalBlocker>

#include <new>

using Korvane::XRVJP2kLayer;

namespace {

constexpr int kDecimals = 4;
/// More than the lines of a band take beside its histograms, and than the beginning of a histogram's line, in any
/// language; in characters.
constexpr qint64 kBandTexts = 1024;
constexpr qint64 kLineStart = 64;

bool isOpacity(const QString &bandName)
{
    return bandName == QLatin1String("AllOpacity");
}

QString numberText(float value)
{
    return FieldText::fixed(double(value), kDecimals);
}

QString bucketText(const PLKBandStatistics &band)
{
    QString text;
    for (quint32 bucket = 0; bucket < band.nHistBucketCount; ++bucket) {
        if (bucket > 0)
            text += QLatin1Char(',');
        text += QString::number(band.pHistogram[bucket]);
    }
    return text;
}

} // namespace

XRVJP2kLayerStatistics::XRVJP2kLayerStatistics(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2kLayerStatistics>())
{
    ui->setupUi(this);
    connect(ui->bandComboBox, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            &XRVJP2kLayerStatistics::onBandChange);
    connect(ui->copyToClipboard, &QPushButton::clicked, this, &XRVJP2kLayerStatistics::copyToClipboard);
}

XRVJP2kLayerStatistics::~XRVJP2kLayerStatistics() = default;

void XRVJP2kLayerStatistics::setLayer(Korvane::Map::Layer *pLayer)
{
    const auto *layer = qobject_cast<XRVJP2kLayer *>(pLayer);
    if (!layer)
        return;
    bandCount = layer->getNumberOfBands();
    listBands(layer->getBandDescriptions());
    statistics.reset(layer->getStatistics());
    showBand(0);
}

void XRVJP2kLayerStatistics::listBands(const QStringList &names)
{
    // The statistics at hand are still those of the layer before.
    const QSignalBlocker blocker(ui->bandComboBox);
    ui->bandComboBox->clear();
    for (int band = 0; band < bandCount; ++band) {
        const QString name = names.value(band);
        if (!isOpacity(name))
            ui->bandComboBox->addItem(name);
    }
}

const PLKBandStatistics *XRVJP2kLayerStatistics::statisticsOf(int band) const
{
    const bool isThere = statistics && band >= 0 && static_cast<quint32>(band) < statistics->nBands;
    return isThere ? &statistics->pBandStats[band] : nullptr;
}

void XRVJP2kLayerStatistics::onBandChange(int index)
{
    if (!isOpacity(ui->bandComboBox->itemText(index)))
        showBand(index);
}

void XRVJP2kLayerStatistics::showBand(int band)
{
    const PLKBandStatistics *values = statisticsOf(band);
    if (!values)
        return;
    using FieldText::showText;
    showText(ui->mode, numberText(values->fMode));
    showText(ui->median, numberText(values->fMedian));
    showText(ui->mean, numberText(values->fMean));
    showText(ui->stddev, numberText(values->fStandardDev));
    showText(ui->min, numberText(values->fMin));
    showText(ui->max, numberText(values->fMax));
    showText(ui->histogramText, bucketText(*values) + QLatin1Char('\r'));
}

void XRVJP2kLayerStatistics::copyToClipboard()
{
    if (!statistics)
        return;
    QStringList counts;
    for (int band = 0; band < bandCount && statisticsOf(band); ++band)
        counts.append(bucketText(*statisticsOf(band)));
    try {
        clipboardText(counts, statistics->nBands).copy();
    } catch (const std::bad_alloc &) {
        clipboardText(counts, 1).copy();
    }
}

/// Made in one piece: with many bands of 16 bits it has hundreds of megabytes.
ClipboardText XRVJP2kLayerStatistics::clipboardText(const QStringList &counts, quint32 repetitions) const
{
    qint64 characters = 0;
    for (const QString &histogram : counts)
        characters += kBandTexts + (kLineStart + histogram.size()) * repetitions;
    ClipboardText text(characters);
    for (int band = 0; band < counts.size(); ++band)
        addBand(band, counts[band], repetitions, &text);
    return text;
}

void XRVJP2kLayerStatistics::addBand(int band, const QString &counts, quint32 repetitions, ClipboardText *text) const
{
    const PLKBandStatistics &values = *statisticsOf(band);
    text->addLine(tr("Band #%1").arg(band));
    text->addLine(tr("mode = %1"), numberText(values.fMode));
    text->addLine(tr("median = %1"), numberText(values.fMedian));
    text->addLine(tr("mean = %1"), numberText(values.fMean));
    text->addLine(tr("stddev = %1"), numberText(values.fStandardDev));
    text->addLine(tr("min = %1"), numberText(values.fMin));
    text->addLine(tr("max = %1"), numberText(values.fMax));
    // The numbers of these lines do not follow the band.
    for (quint32 line = 0; line < repetitions; ++line) {
        text->addText(tr("Histogram Band #%1 = ").arg(line));
        text->addLine(counts);
    }
}
