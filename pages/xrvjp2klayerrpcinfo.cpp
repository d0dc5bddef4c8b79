#include "xrvjp2klayerrpcinfo.h"

#include "clipboardtext.h"
#include "fieldtext.h"
#include "layer/xrvjp2klayer.h"
#include "ui_xrvjp2klayerrpcinfo.h"

#include <utility>

using Korvane::XRVJP2kLayer;

namespace {

constexpr int kDecimals = 6;

QString numberText(double value)
{
    return FieldText::fixed(value, kDecimals);
}

/// \a heading and the twenty coefficients behind it. The comma after the last one becomes the end of the line, the
/// blank stays.
QString coefficientBlock(const QString &heading, const double (&coefficients)[20])
{
    QString text = heading;
    for (const double coefficient : coefficients)
        text += numberText(coefficient) + QLatin1String(", ");
    text[text.size() - 2] = QLatin1Char('\n');
    return text;
}

} // namespace

XRVJP2kLayerRPCInfo::XRVJP2kLayerRPCInfo(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2kLayerRPCInfo>())
{
    ui->setupUi(this);
    connect(ui->copyToClipboard, &QPushButton::clicked, this, &XRVJP2kLayerRPCInfo::copyToClipboard);
}

XRVJP2kLayerRPCInfo::~XRVJP2kLayerRPCInfo() = default;

void XRVJP2kLayerRPCInfo::setLayer(Korvane::Map::Layer *pLayer)
{
    const auto *layer = qobject_cast<XRVJP2kLayer *>(pLayer);
    if (!layer)
        return;
    record.reset(layer->getRPCInfo());
    if (record)
        showRecord();
}

void XRVJP2kLayerRPCInfo::showRecord()
{
    const std::pair<QLineEdit *, double> fields[] = {
        {ui->errorBias, record->fErrorBias},
        {ui->errorRandom, record->fErrorRandom},
        {ui->lineOffset, record->fLineOffset},
        {ui->lineScale, record->fLineScale},
        {ui->latitudeOffset, record->fLatitudeOffset},
        {ui->latitudeScale, record->fLatitudeScale},
        {ui->longitudeOffset, record->fLongitudeOffset},
        {ui->longitudeScale, record->fLongitudeScale},
        {ui->heightOffset, record->fHeightOffset},
        {ui->heightScale, record->fHeightScale},
        {ui->sampleOffset, record->fSampleOffset},
        {ui->sampleScale, record->fSampleScale},
    };
    for (const auto &[field, value] : fields)
        FieldText::showText(field, numberText(value));
    FieldText::showText(ui->coefficients, coefficientText());
}

QString XRVJP2kLayerRPCInfo::coefficientText() const
{
    return coefficientBlock(tr("Line Numerator Coefficients:\n"), record->fLineNumerator) +
           coefficientBlock(tr("Line Denominator Coefficients:\n"), record->fLineDenominator) +
           coefficientBlock(tr("Sample Numerator Coefficients:\n"), record->fSampleNumerator) +
           coefficientBlock(tr("Sample Denominator Coefficients:\n"), record->fSampleDenominator);
}

void XRVJP2kLayerRPCInfo::copyToClipboard()
{
    if (!record)
        return;
    ClipboardText text;
    text.addLine(tr("Error Bias = %1"), numberText(record->fErrorBias));
    text.addLine(tr("Error Random = %1"), numberText(record->fErrorRandom));
    text.addLine(tr("Line Offset = %1"), numberText(record->fLineOffset));
    text.addLine(tr("Line Scale = %1"), numberText(record->fLineScale));
    text.addLine(tr("Latitude Offset = %1"), numberText(record->fLatitudeOffset));
    text.addLine(tr("Latitude Scale = %1"), numberText(record->fLatitudeScale));
    text.addLine(tr("Longitude Offset = %1"), numberText(record->fLongitudeOffset));
    text.addLine(tr("Longitude Scale = %1"), numberText(record->fLongitudeScale));
    text.addLine(tr("Height Offset = %1"), numberText(record->fHeightOffset));
    text.addLine(tr("Height Scale = %1"), numberText(record->fHeightScale));
    text.addLine(tr("Sample Offset = %1"), numberText(record->fSampleOffset));
    text.addLine(tr("Sample Scale = %1"), numberText(record->fSampleScale));
    text.addText(coefficientText());
    text.copy();
}
