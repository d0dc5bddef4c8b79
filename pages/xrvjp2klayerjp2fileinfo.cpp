#include "xrvjp2klayerjp2fileinfo.h"

#include "clipboardtext.h"
#include "fieldtext.h"
#include "layer/xrvjp2klayer.h"
#include "scrollbackground.h"
#include "ui_xrvjp2klayerjp2fileinfo.h"

using Korvane::XRVJP2kLayer;

XRVJP2kLayerJP2FileInfo::XRVJP2kLayerJP2FileInfo(QWidget *parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::XRVJP2kLayerJP2FileInfo>())
{
    ui->setupUi(this);
    clearBackground(ui->scrollArea);
    connect(ui->copyToClipboard, &QPushButton::clicked, this, &XRVJP2kLayerJP2FileInfo::copyToClipboard);
}

XRVJP2kLayerJP2FileInfo::~XRVJP2kLayerJP2FileInfo() = default;

void XRVJP2kLayerJP2FileInfo::setLayer(Korvane::Map::Layer *pLayer)
{
    if (!pLayer)
        return;
    layer = qobject_cast<XRVJP2kLayer *>(pLayer);
    XRVJP2kLayer::Jp2FileInfo info;
    if (!layer || !layer->getJp2FileInfo(info))
        return;
    using namespace FieldText;
    showText(ui->Comments, info.comments);
    showText(ui->Profile, QString::number(info.profile));
    showText(ui->tileDimensions, dimensions(info.numberOfTiles));
    showText(ui->tileSizes, dimensions(info.tileSize));
    showText(ui->precinctSizesX, info.precinctSizesX);
    showText(ui->precinctSizesY, info.precinctSizesY);
    showText(ui->codeBlockSize, dimensions(info.codeBlockSize));
    showText(ui->bitDepth, info.bitDepths);
    showText(ui->resolutionLevels, QString::number(info.resolutionLevels));
    showText(ui->qualityLayers, QString::number(info.qualityLayers));
    showText(ui->progressionOrder, info.progressionOrder);
    showText(ui->DWTfilter, info.filter);
    showText(ui->useSOP, trueOrFalse(info.useSOP));
    showText(ui->useEPH, trueOrFalse(info.useEPH));
    showText(ui->useGML, trueOrFalse(info.hasGML));
}

void XRVJP2kLayerJP2FileInfo::copyToClipboard()
{
    if (!layer)
        return;
    ClipboardText text;
    XRVJP2kLayer::Jp2FileInfo info;
    if (layer->getJp2FileInfo(info)) {
        using FieldText::trueOrFalse;
        const auto line = [&text](const QString &format, const QString &value) { text.addLine(format, value); };
        const auto sizeLine = [&text](const QString &format, QSize size) {
            text.addLine(format.arg(size.width()).arg(size.height()));
        };
        line(tr("Comments = %1"), info.comments);
        line(tr("Profile = %1"), QString::number(info.profile));
        sizeLine(tr("Tiles Dimensions (X,Y) = %1 x %2"), info.numberOfTiles);
        line(tr("Tile Width = %1"), QString::number(info.tileSize.width()));
        line(tr("Tile Height = %1"), QString::number(info.tileSize.height()));
        line(tr("Precinct Sizes on X axis = %1"), info.precinctSizesX);
        line(tr("Precinct Sizes on Y axis = %1"), info.precinctSizesY);
        sizeLine(tr("Code Block Dimensions (X,Y) = %1 x %2"), info.codeBlockSize);
        line(tr("Band Bit Depths = %1"), info.bitDepths);
        line(tr("Resolution Levels = %1"), QString::number(info.resolutionLevels));
        line(tr("Quality Layers = %1"), QString::number(info.qualityLayers));
        line(tr("Progression Order = %1"), info.progressionOrder);
        line(tr("Filter = %1"), info.filter);
        line(tr("SOP Markers = %1"), trueOrFalse(info.useSOP));
        line(tr("EPH Markers = %1"), trueOrFalse(info.useEPH));
        line(tr("GML in JP2 = %1"), trueOrFalse(info.hasGML));
    }
    text.copy();
}
